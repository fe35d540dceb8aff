#include "ItemRouter.h"

#include "ProgramStarts.h"
#include "QorloGlobals.h"

#include "core/Clock.h"
#include "core/CommonFile.h"
#include "core/DayDate.h"
#include "run/LogResult.h"
#include "run/RunReport.h"
#include "run/RunState.h"
#include "run/SMTPMail.h"

#include <QFileInfo>

namespace {

// Multi-runs and collections are not run by this build yet.
const QString kNotSupported =
    QStringLiteral("Multi-run and collection items are not supported in this build");

void EndRun(clsSchedule &schedule)
{
    schedule.ProcessingID.clear();
    schedule.ProcessingName.clear();
}

void LogNotSupported(QorloGlobals &globals)
{
    const double now = Now();
    clsSchedule &schedule = globals.Schedule;
    WriteLogEntry(globals.Log, schedule.ProcessingID, now, now, schedule.NextRun(), kNotSupported, 0);
    EndRun(schedule);
}

void ReportMissingFile(QorloGlobals &globals)
{
    clsSchedule &schedule = globals.Schedule;
    const QString text = QStringLiteral("Cannot find file ") + schedule.File();
    RunContext run = globals.Context();
    LogResult(run, 0, text, 0);
    if (!schedule.ErrorTo().isEmpty()) {
        const SMTPMail::MailRun run{schedule, globals.Log};
        SMTPMail::SendErrorMail(run, schedule.ErrorTo(), text, schedule.ReportID(), schedule.Name());
    }
    EndRun(schedule);
}

} // namespace

void RunScheduleItem(QorloGlobals &globals, const QString &reportID)
{
    clsSchedule &schedule = globals.Schedule;
    schedule.Find(reportID);
    schedule.ProcessingID = schedule.ReportID();
    schedule.ProcessingName = schedule.Name();
    globals.SaveWeb();

    const QString file = schedule.File();
    if (file == QLatin1String("COLLECTION"))
        return LogNotSupported(globals);
    if (!QFileInfo::exists(file))
        return ReportMissingFile(globals);
    if (schedule.Dest() == QLatin1String("M"))
        return LogNotSupported(globals);

    const double start = Now();
    const QString extension = CommonFile::FileExtension(file).toLower();
    RunContext run = globals.Context();
    if (extension == QLatin1String("rpt")) {
        RunReport(run);
        EndRun(schedule);
        globals.SaveSchedule();
        return;
    }
    if (extension == QLatin1String("xml")) {
        RunGlobalProcess(globals, file);
        LogResult(run, start, QStringLiteral("Successful QorloGLOBAL "), 0);
    } else {
        StartProgram(file);
        LogResult(run, start, QStringLiteral("Successful Execute of Application "), 0);
        schedule.SetLastRun(FormatDateTime(Now()));
    }
    EndRun(schedule);
}
