#include "RunCollection.h"

#include "LogResult.h"
#include "MultiRun.h"
#include "OutputNames.h"
#include "ProgramStarts.h"
#include "RunReport.h"
#include "RunState.h"

#include "core/Clock.h"
#include "core/CommonFile.h"
#include "core/DayDate.h"
#include "core/StopRequest.h"
#include "store/clsSchedule.h"

namespace {

void ClearRunState(clsSchedule &schedule)
{
    schedule.ProcessingID.clear();
    schedule.ProcessingName.clear();
}

// One member, with the cursor on it. A member is not tested for existence: a member collection is
// started as a program, which fails.
void RunMember(RunContext &run)
{
    clsSchedule &schedule = run.schedule;
    const QString file = schedule.File();
    const QString extension = CommonFile::FileExtension(file).toLower();
    if (extension == QLatin1String("rpt")) {
        // Inside a collection a multi-run file makes a multi-run, whatever the member's destination.
        if (!schedule.Prompt().isEmpty())
            RunMultiRun(run, schedule.Prompt());
        else
            RunReport(run);
        ClearRunState(schedule);
    } else if (extension == QLatin1String("xml")) {
        RunGlobalProcess(run, file);
        LogResult(run, Now(), QStringLiteral("Successful QorloGLOBAL "), 0);
    } else {
        StartProgram(file);
        LogResult(run, Now(), QStringLiteral("Successful Execute of Application "), 0);
    }
}

} // namespace

void RunCollection(RunContext &run)
{
    clsSchedule &schedule = run.schedule;
    const QString id = schedule.ReportID();
    const QString name = schedule.Name();
    OutputNames::CurrentCollection() = schedule.CollectionName();
    const double start = Now();
    schedule.ProcessingID = id;
    schedule.ProcessingName = name + QStringLiteral(" (Start)");
    LogResult(run, start, QStringLiteral("Start Process report collection"), 0);

    int count = 0;
    for (int row = 0; row < schedule.CollectionCount(); ++row) {
        schedule.SetCollectionPosition(row);
        if (schedule.CollectionID() != id)
            continue;
        StopRequest::Check();
        ++count;
        schedule.ProcessingID = id;
        schedule.ProcessingName = name + QStringLiteral(" (") + QString::number(count) + QLatin1Char(')');
        run.saveWeb();
        const QString member = schedule.CollectionItem();
        // A member that no longer exists leaves the cursor where it stood.
        schedule.Find(member);
        schedule.SetCollectionParm(id, member);
        RunMember(run);
    }

    schedule.Find(id);
    schedule.SetLastRun(FormatDateTime(Now()));
    schedule.ProcessingID = id;
    schedule.ProcessingName = name + QStringLiteral(" (Finished)");
    // A collection has no failure of its own: its members log theirs.
    LogResult(run, start,
              QStringLiteral("Successful Run (") + QString::number(count) +
                  QStringLiteral(" schedule items processed in collection)"),
              0);
    ClearRunState(schedule);
    OutputNames::CurrentCollection().clear();
    schedule.Save(CommonFile::JoinPath(run.appPath, QStringLiteral("Qorlo.XML")));
}
