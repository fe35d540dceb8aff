#include "ItemRouter.h"

#include "QorloGlobals.h"

#include "core/Clock.h"
#include "core/CommonFile.h"
#include "core/DayDate.h"
#include "core/StopRequest.h"
#include "run/LogResult.h"
#include "run/MultiRun.h"
#include "run/ProgramStarts.h"
#include "run/RunCollection.h"
#include "run/RunReport.h"
#include "run/RunState.h"
#include "run/SMTPMail.h"

#include <QFileInfo>

namespace {

void EndRun(clsSchedule &schedule)
{
    schedule.ProcessingID.clear();
    schedule.ProcessingName.clear();
}

void ReportMissingFile(RunContext &run)
{
    clsSchedule &schedule = run.schedule;
    const QString text = QStringLiteral("Cannot find file ") + schedule.File();
    LogResult(run, 0, text, 0);
    if (!schedule.ErrorTo().isEmpty()) {
        const SMTPMail::MailRun mailRun{schedule, run.log};
        SMTPMail::SendErrorMail(mailRun, schedule.ErrorTo(), text, schedule.ReportID(), schedule.Name());
    }
}

// A report, a global process or a program, by the extension of the item's file.
void RunByExtension(QorloGlobals &globals, RunContext &run)
{
    clsSchedule &schedule = globals.Schedule;
    const QString file = schedule.File();
    const double start = Now();
    const QString extension = CommonFile::FileExtension(file).toLower();
    if (extension == QLatin1String("rpt")) {
        RunReport(run);
        EndRun(schedule);
        globals.SaveSchedule();
        return;
    }
    // Neither of these saves: an application's LastRun reaches the file with the next save.
    if (extension == QLatin1String("xml")) {
        RunGlobalProcess(run, file);
        LogResult(run, start, QStringLiteral("Successful QorloGLOBAL "), 0);
    } else {
        StartProgram(file);
        LogResult(run, start, QStringLiteral("Successful Execute of Application "), 0);
        schedule.SetLastRun(FormatDateTime(Now()));
    }
}

// The run the item's file and destination call for.
void Route(QorloGlobals &globals, RunContext &run)
{
    clsSchedule &schedule = globals.Schedule;
    const QString file = schedule.File();
    if (file == QLatin1String("COLLECTION"))
        RunCollection(run);
    else if (!QFileInfo::exists(file))
        ReportMissingFile(run);
    else if (schedule.Dest() == QLatin1String("M"))
        RunMultiRun(run, schedule.Prompt());
    else
        RunByExtension(globals, run);
}

} // namespace

void RunScheduleItem(QorloGlobals &globals, const QString &reportID)
{
    clsSchedule &schedule = globals.Schedule;
    schedule.Find(reportID);
    schedule.ProcessingID = schedule.ReportID();
    schedule.ProcessingName = schedule.Name();
    globals.SaveWeb();

    RunContext run = globals.Context();
    const QString id = schedule.ProcessingID;
    const QString name = schedule.ProcessingName;
    const double start = Now();
    try {
        Route(globals, run);
    } catch (const StopRequested &) {
        // The entry names the item even when the run has logged a result already.
        schedule.ProcessingID = id;
        schedule.ProcessingName = name;
        LogResult(run, start, QStringLiteral("Run stopped at shutdown"), 0);
    }
    EndRun(schedule);
}
