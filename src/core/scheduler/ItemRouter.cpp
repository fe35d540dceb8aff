#include "ItemRouter.h"

#include "ProgramStarts.h"
#include "QorloGlobals.h"

#include "core/Clock.h"
#include "core/CommonFile.h"
#include "core/DayDate.h"
#include "run/SMTPMail.h"

#include <QFileInfo>

namespace {

// Reports, multi-runs and collections are not run by this build yet.
const QString kNotSupported = QStringLiteral("Report items are not supported in this build");

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
    LogResult(globals, 0, text, 0);
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
    if (extension == QLatin1String("rpt"))
        return LogNotSupported(globals);
    if (extension == QLatin1String("xml")) {
        RunGlobalProcess(globals, file);
        LogResult(globals, start, QStringLiteral("Successful QorloGLOBAL "), 0);
    } else {
        StartProgram(file);
        LogResult(globals, start, QStringLiteral("Successful Execute of Application "), 0);
        schedule.SetLastRun(FormatDateTime(Now()));
    }
    EndRun(schedule);
}

void LogResult(QorloGlobals &globals, double start, const QString &text, qint32 pages)
{
    clsSchedule &schedule = globals.Schedule;
    const double now = Now();
    WriteLogEntry(globals.Log, schedule.ProcessingID, start, now, schedule.NextRun(),
                  schedule.ProcessingName + QStringLiteral(": ") + text, pages);
    schedule.LastReportID = schedule.ProcessingID;
    schedule.LastReport = schedule.ProcessingName;
    schedule.LastReportMsg = text;
    schedule.LastReportDate = now;
    EndRun(schedule);
    globals.SaveWeb();
}
