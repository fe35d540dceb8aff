#include "LogResult.h"

#include "RunState.h"

#include "core/Clock.h"
#include "core/OneLine.h"
#include "log/clsLog.h"
#include "store/clsSchedule.h"

void LogResult(RunContext &run, double start, const QString &result, qint32 pages)
{
    clsSchedule &schedule = run.schedule;
    // The text also becomes LastReportMsg, a one-line element of the schedule file.
    const QString text = OneLine(result);
    const double now = Now();
    WriteLogEntry(run.log, schedule.ProcessingID, start, now, schedule.NextRun(),
                  schedule.ProcessingName + QStringLiteral(": ") + text, pages);
    schedule.LastReportID = schedule.ProcessingID;
    schedule.LastReport = schedule.ProcessingName;
    schedule.LastReportMsg = text;
    schedule.LastReportDate = now;
    schedule.ProcessingID.clear();
    schedule.ProcessingName.clear();
    run.saveWeb();
}
