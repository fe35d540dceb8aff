#include "ReportDelivery.h"

#include "LogResult.h"
#include "MailSources.h"
#include "OutputNames.h"
#include "PrintReport.h"
#include "RunState.h"
#include "SMTPMail.h"

#include "core/Clock.h"
#include "core/CommonFile.h"
#include "core/Numbers.h"
#include "log/clsLog.h"
#include "mail/AddressList.h"
#include "mail/SmtpLog.h"
#include "store/clsSchedule.h"

#include <QDir>

namespace ReportDelivery {

namespace {

const QString kCrLf = QStringLiteral("\r\n");

qint32 PageCountOf(RunContext &run)
{
    return run.state.report->PrintingStatus().NumberOfPages();
}

// The item's notice text, or `opening` + CR LF + "ScheduleID=" and the item.
QString NotifyMessage(RunContext &run, const QString &opening)
{
    const QString own = run.schedule.NotifyMsg().trimmed();
    if (!own.isEmpty())
        return own;
    return opening + kCrLf + QStringLiteral("ScheduleID=") + run.schedule.ReportID() + QStringLiteral(": ") +
           run.schedule.Name();
}

// The success of a delivery: its log entry, the item's page count and the notice. Returns the pages.
qint32 LogSuccess(RunContext &run, const Delivery &delivery, const QString &text,
                  const QString &noticeOpening)
{
    const qint32 pages = PageCountOf(run);
    LogResult(run, delivery.start, text, pages);
    run.schedule.SetPageCount(Numbers::ToInt16(pages));
    if (!run.schedule.NotifyTo().isEmpty())
        SendNotifyMail(run, run.schedule.NotifyTo(), NotifyMessage(run, noticeOpening));
    return pages;
}

void EmptyStagingFolder(const QString &folder)
{
    QDir staging(folder);
    for (const QString &name : staging.entryList(QDir::Files | QDir::Hidden))
        staging.remove(name);
}

} // namespace

SMTPMail::MailRun MailRunOf(RunContext &run)
{
    return {run.schedule, run.log, run.state.report.get()};
}

void SendErrorMail(RunContext &run, const QString &to, const QString &message)
{
    SMTPMail::SendErrorMail(MailRunOf(run), to, message, run.schedule.ReportID(), run.schedule.Name());
}

void SendNotifyMail(RunContext &run, const QString &to, const QString &message)
{
    SMTPMail::SendNotifyMail(MailRunOf(run), to, message, run.schedule.ReportID(), run.schedule.Name());
}

QString ErrorMessage(RunContext &run, const QString &reason)
{
    const QString own = run.schedule.ErrorMsg().trimmed();
    if (!own.isEmpty())
        return own;
    return QStringLiteral("Error occured ") + kCrLf + QStringLiteral("while processing ScheduleID=") +
           run.schedule.ReportID() + QStringLiteral(": ") + run.schedule.Name() + kCrLf + reason;
}

void ToDisk(RunContext &run, Delivery &delivery)
{
    clsSchedule &schedule = run.schedule;
    ErrorTrap &trap = run.state.trap;
    Engine::Report &report = *run.state.report;
    // The stored text: an item without a Location has no disk output.
    QString output = schedule.Field(clsSchedule::colLocation);
    // Exporting over the open report goes through a temporary file, copied at the end of the run.
    if (schedule.File() == output) {
        output = CommonFile::JoinPath(run.appPath, QStringLiteral("Output/Temp.ctl"));
        delivery.tempFile = output;
    }
    if (output.isEmpty())
        return;
    trap.Guard([&] { output = OutputNames::ExpandFileCodes(output); });
    trap.Guard([&] {
        report.ExportOptions().DestinationType = Engine::DiskFileDestination;
        report.ExportOptions().DiskFileName = output;
        report.Export(false);
    });
    if (!trap.IsSet()) {
        trap.Disarm();
        LogSuccess(run, delivery, QStringLiteral("Successful output to ") + output,
                   QStringLiteral("Completed processing "));
        return;
    }
    // Disarming clears the state, so what is read after it is "(0) " and no description; so it stands.
    trap.Disarm();
    const QString description = trap.Description();
    LogResult(run, delivery.start,
              QStringLiteral("ERROR: (") + QString::number(trap.Code()) + QStringLiteral(") ") + description +
                  QStringLiteral(" for disk file ") + output,
              0);
    trap.Clear();
    SendErrorMail(run, schedule.ErrorTo(), ErrorMessage(run, description));
}

void ByMail(RunContext &run, const Delivery &delivery)
{
    clsSchedule &schedule = run.schedule;
    ErrorTrap &trap = run.state.trap;
    Engine::ExportOptions &options = run.state.report->ExportOptions();
    const QString staging = CommonFile::JoinPath(run.appPath, QStringLiteral("SMTP/"));
    EmptyStagingFolder(staging);
    SmtpLog::StartSmtpLog(QStringLiteral("Send Report: ") + schedule.Name());

    const QString reportName = CommonFile::FileNameOnly(schedule.File());
    QString staged;
    if (options.FormatType == Engine::XmlFormat) {
        staged = staging + CommonFile::ChangeExtension(QString(reportName).remove(QLatin1Char(' ')),
                                                       QStringLiteral("xml"));
        options.XMLFileName = staged;
    } else {
        staged = staging + CommonFile::ChangeExtension(reportName, run.state.OutputExtension);
        if (options.FormatType == Engine::HtmlFormat || options.FormatType == Engine::DhtmlFormat)
            options.HTMLFileName = staged;
        else
            options.DiskFileName = staged;
    }
    options.DestinationType = Engine::DiskFileDestination;
    trap.Guard([&] { run.state.report->Export(false); });

    if (schedule.SMTP_Server.isEmpty() || schedule.SMTP_From.isEmpty()) {
        // Logged as an error and then, as the run goes on, as a success.
        WriteLogEntry(run.log, schedule.ProcessingID, delivery.start, Now(), QString(),
                      QStringLiteral("ERROR: No mail server or sender specified"), 0);
    } else {
        trap.Guard([&] {
            SMTPMail::SendReportMail(MailRunOf(run), schedule.Email(), staged, schedule.RptSubject(),
                                     schedule.MailAttach());
        });
    }
    if (!trap.IsSet()) {
        LogSuccess(run, delivery, QStringLiteral("Successful email to ") + schedule.Email(),
                   QStringLiteral("Report completed processing "));
        return;
    }
    const QString description = trap.Description();
    LogResult(run, delivery.start, schedule.Name() + QStringLiteral("ERROR: ") + description, 0);
    if (!schedule.ErrorTo().isEmpty())
        SendNotifyMail(run, schedule.ErrorTo(), ErrorMessage(run, description));
    trap.Clear();
}

void ToPrinters(RunContext &run, const Delivery &delivery)
{
    clsSchedule &schedule = run.schedule;
    ErrorTrap &trap = run.state.trap;
    const QString list =
        AddressList::ExpandAddressList(schedule.Printer(), MailSources::ListSources(schedule, run.log));
    // The page count of the last good print stands for a failure after it.
    qint32 pages = 0;
    for (const QString &printer : list.split(QLatin1Char(';'))) {
        PrintReport(run, *run.state.report, printer, schedule.PrinterCopies());
        if (!trap.IsSet()) {
            pages =
                LogSuccess(run, delivery, schedule.Name() + QStringLiteral(": Successful print on ") + list,
                           QStringLiteral("Report completed processing "));
            continue;
        }
        LogResult(run, delivery.start,
                  QStringLiteral("ERROR: printing to  ") + schedule.Printer() + QStringLiteral(" - ") +
                      trap.Description(),
                  pages);
        // The item's error text goes out as it is, with the reason below it.
        if (!schedule.ErrorTo().isEmpty())
            SendNotifyMail(run, schedule.ErrorTo(), schedule.ErrorMsg() + kCrLf + trap.Description());
        trap.Clear();
    }
}

} // namespace ReportDelivery
