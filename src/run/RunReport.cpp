#include "RunReport.h"

#include "LogResult.h"
#include "OutputFormat.h"
#include "ReportBinding.h"
#include "ReportDelivery.h"
#include "RunState.h"
#include "SMTPMail.h"

#include "core/Clock.h"
#include "core/CommonFile.h"
#include "core/DayDate.h"
#include "core/QorloError.h"
#include "core/StopRequest.h"
#include "store/clsSchedule.h"

#include <QFile>

using namespace ReportDelivery;

namespace {

// A fresh engine and the report open; false when it would not open.
bool OpenReport(RunContext &run, double start)
{
    RunState &state = run.state;
    const QString file = run.schedule.File();
    state.trap.Arm();
    // The report goes before the application that opened it.
    state.report.reset();
    state.application = std::make_unique<Engine::Application>();
    state.trap.Guard([&] { state.report = state.application->OpenReport(file); });
    if (!state.trap.IsSet())
        return true;
    LogResult(run, start,
              QStringLiteral("ERROR: ") + state.trap.Description() + QStringLiteral(" for report ") + file,
              0);
    state.trap.Clear();
    return false;
}

// Connections, saved data, parameters and the export format; false when a parameter failed.
bool PrepareReport(RunContext &run, double start)
{
    RunState &state = run.state;
    clsSchedule &schedule = run.schedule;
    Engine::Report &report = *state.report;
    state.trap.Disarm();
    ReportBinding::LogOnReport(run, report, schedule.ReportID());
    if (!state.ConnectError.isEmpty()) {
        // The run carries on: a dead connection normally ends it at the read.
        LogResult(run, start, state.ConnectError, 0);
        SendErrorMail(run, schedule.ErrorTo(), ErrorMessage(run, state.ConnectError));
    }
    if (report.HasSavedData() && schedule.RetainData() != QLatin1String("Yes"))
        report.DiscardSavedData();
    ReportBinding::SetParameters(run, QString());
    if (!schedule.ParmError.isEmpty()) {
        LogResult(run, start, schedule.ParmError, 0);
        SendErrorMail(run, schedule.ErrorTo(), ErrorMessage(run, schedule.ParmError));
        return false;
    }
    SetOutputFormat(run, report, schedule.OutputFormat());
    return true;
}

// The records; false when the run ends here, on a failed read or without data.
bool ReadRecords(RunContext &run, double start)
{
    RunState &state = run.state;
    clsSchedule &schedule = run.schedule;
    state.trap.Arm();
    schedule.SetPageCount(0);
    state.trap.Clear();
    state.trap.Guard([&] { state.report->ReadRecords(); });
    if (state.trap.IsSet()) {
        const QString text = QLatin1Char('(') + QString::number(state.trap.Code()) + QStringLiteral(") ") +
                             state.trap.Description();
        state.trap.Clear();
        LogResult(run, start, QStringLiteral("ERROR: ") + text + QStringLiteral(" for disk file "), 0);
        // A notice, not an error mail: its subject reads "Completed Processing".
        if (!schedule.ErrorTo().isEmpty())
            state.trap.Guard([&] { SendNotifyMail(run, schedule.ErrorTo(), ErrorMessage(run, text)); });
        return false;
    }
    if (state.report->PrintingStatus().NumberOfRecordSelected() == 0 &&
        schedule.NoRecords() != QLatin1String("Send Empty Report")) {
        state.trap.Guard([&] { SMTPMail::SendNoDataMail(MailRunOf(run)); });
        return false;
    }
    return true;
}

void Deliver(RunContext &run, Delivery &delivery)
{
    const QString dest = run.schedule.Dest();
    if (dest.isEmpty() || dest == QLatin1String("D"))
        ToDisk(run, delivery);
    else if (dest == QLatin1String("E"))
        ByMail(run, delivery);
    else if (dest == QLatin1String("P"))
        ToPrinters(run, delivery);
}

// The end of a run that delivered, with the trap off: a failing copy of the temporary file unwinds.
void EndRun(RunContext &run, const Delivery &delivery)
{
    RunState &state = run.state;
    clsSchedule &schedule = run.schedule;
    state.trap.Disarm();
    ReportBinding::LogOffServers(run);
    state.report.reset();
    state.application.reset();
    schedule.SetLastRun(FormatDateTime(Now()));
    schedule.Save(CommonFile::JoinPath(run.appPath, QStringLiteral("Qorlo.XML")));
    if (delivery.tempFile.isEmpty())
        return;
    const QString target = schedule.Field(clsSchedule::colLocation);
    QFile::remove(target);
    if (!QFile::copy(delivery.tempFile, target))
        throw QorloError(QorloError::PathFileAccess);
}

} // namespace

void RunReport(RunContext &run)
{
    Delivery delivery;
    delivery.start = Now();
    run.schedule.ParmError.clear();
    // Each early return leaves the engine objects to the next run, without a log-off or a save.
    if (!OpenReport(run, delivery.start) || !PrepareReport(run, delivery.start) ||
        !ReadRecords(run, delivery.start))
        return;
    StopRequest::Check();
    Deliver(run, delivery);
    EndRun(run, delivery);
}
