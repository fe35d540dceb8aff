#include "SMTPMail.h"

#include "MailSources.h"
#include "MailText.h"

#include "core/Clock.h"
#include "core/Numbers.h"
#include "core/WholeFile.h"
#include "log/clsLog.h"
#include "mail/AddressList.h"
#include "mail/SmtpLog.h"
#include "mail/frmSMTPSendMail.h"
#include "engine/Report.h"
#include "store/clsSchedule.h"

#include <QCoreApplication>
#include <QThread>

using AddressList::ExpandAddressList;
using MailSources::ListSources;
using namespace SmtpLog;

namespace SMTPMail {

namespace {

QString ExpandMailText(const MailRun &run, const QString &text)
{
    return OutputNames::ExpandMailText(text, run.report, run.schedule.AppPath);
}

// A failed send goes in the run log against the running item.
void LogSendFailure(const MailRun &run, const QString &explanation)
{
    const clsSchedule &schedule = run.schedule;
    const double now = Now();
    // A run always has its item at the cursor; without one the entry goes without a next run.
    const QString nextRun = schedule.Position() >= 0 ? schedule.NextRun() : QString();
    WriteLogEntry(run.log, schedule.ProcessingID, now, now, nextRun,
                  schedule.ProcessingName + QStringLiteral(": Error Sending Email (") + explanation +
                      QLatin1Char(')'),
                  0);
}

// A sender whose subject and body pass the run's substitution.
std::unique_ptr<frmSMTPSendMail> StartSender(const MailRun &run)
{
    auto sender = std::make_unique<frmSMTPSendMail>(
        MailSources::ServerSettings(run.schedule), run.schedule.AppPath,
        [run](const QString &explanation) { LogSendFailure(run, explanation); },
        [run](const QString &text) { return ExpandMailText(run, text); });
    sender->StartMail();
    sender->MailServer = run.schedule.SMTP_Server;
    return sender;
}

int ExportFormat(const MailRun &run)
{
    return run.report ? run.report->ExportOptions().FormatType : 0;
}

bool IsHtmlExport(int format)
{
    return format == Engine::HtmlFormat || format == Engine::DhtmlFormat;
}

// The report goes in the body, or beside it, by EMailAttach (exact text) and the export format.
void AppendReport(frmSMTPSendMail &sender, const QString &emailAttach, int format, const QString &outputFile)
{
    const bool inBody = emailAttach == QLatin1String("In Body");
    if (inBody && (format == Engine::CharSeparatedFormat || format == Engine::TextFormat)) {
        sender.AppendTextFile(outputFile);
    } else if (inBody && IsHtmlExport(format)) {
        sender.MailFormat = QStringLiteral("HTML");
        sender.AppendHTMLFolder(outputFile, outputFile);
    } else if (IsHtmlExport(format)) {
        sender.AppendHTMLFolder(outputFile, QString());
    } else {
        sender.AppendFile(outputFile);
    }
}

void AppendExtraFiles(frmSMTPSendMail &sender, const QString &extraFiles)
{
    if (extraFiles.isEmpty())
        return;
    for (const QString &file : extraFiles.split(QLatin1Char(';'))) {
        if (WholeFile::IsWholeFile(file))
            sender.AppendFile(file);
    }
}

void SendNotice(const MailRun &run, const QString &to, const QString &subject, const QString &message)
{
    if (to.isEmpty())
        return;
    const auto sender = StartSender(run);
    sender->MailFrom = run.schedule.SMTP_From;
    sender->MailTo = ExpandAddressList(run.schedule.NotifyTo(), ListSources(run.schedule, run.log));
    sender->MailSubject = subject;
    sender->MailBody = message;
    sender->SendMail();
    sender->CloseForm();
    MailPause(run.schedule);
    FlushSmtpLog(run.schedule.AppPath);
}

} // namespace

void SendReportMail(const MailRun &run, const QString &to, const QString &outputFile, const QString &subject,
                    const QString &extraFiles)
{
    clsSchedule &schedule = run.schedule;
    if (schedule.SMTP_Server.isEmpty() || schedule.SMTP_From.isEmpty()) {
        schedule.SetErrorMsg(QStringLiteral("ERROR: No STMP server or sender specified"));
        return;
    }
    const auto sender = StartSender(run);
    sender->MailFrom = schedule.RptFrom().isEmpty() ? schedule.SMTP_From : schedule.RptFrom();
    sender->MailTo = ExpandAddressList(to, ListSources(schedule, run.log));
    sender->MailCc = ExpandAddressList(schedule.RptToCC(), ListSources(schedule, run.log));
    sender->MailBcc = ExpandAddressList(schedule.RptToBCC(), ListSources(schedule, run.log));
    sender->MailSubject = subject.isEmpty() ? schedule.Name() : ExpandMailText(run, subject);
    if (!schedule.RptMessage().isEmpty())
        sender->AppendTextMsg(ExpandMailText(run, schedule.RptMessage()));
    else if (!schedule.SMTP_StdMessage.isEmpty())
        sender->AppendTextMsg(schedule.SMTP_StdMessage);
    AppendReport(*sender, schedule.EMailAttach(), ExportFormat(run), outputFile);
    AppendExtraFiles(*sender, extraFiles);
    sender->SendMail();
    sender->CloseForm();
    MailPause(schedule);
    FlushSmtpLog(schedule.AppPath);
}

void SendNotifyMail(const MailRun &run, const QString &to, const QString &message, const QString &id,
                    const QString &name)
{
    SendNotice(run, to, QStringLiteral("Completed Processing ") + id + QStringLiteral(": ") + name, message);
}

void SendErrorMail(const MailRun &run, const QString &to, const QString &message, const QString &id,
                   const QString &name)
{
    SendNotice(run, to, QStringLiteral("Error Processing ") + id + QStringLiteral(": ") + name, message);
}

void SendNoDataMail(const MailRun &run)
{
    clsSchedule &schedule = run.schedule;
    const auto sender = StartSender(run);
    sender->MailFrom = schedule.SMTP_From;
    sender->MailSubject = QStringLiteral("No Data when processing report");
    const QString choice = schedule.NoRecords().toLower();
    QString logText;
    if (choice == QLatin1String("notify administrator")) {
        sender->AppendTextMsg(QStringLiteral("No data found when processing the report:") + schedule.Name() +
                              QStringLiteral("  (ID=") + schedule.ReportID() + QLatin1Char(')'));
        sender->MailTo = ExpandAddressList(schedule.SMTP_From, ListSources(schedule, run.log));
        sender->SendMail();
        logText =
            QStringLiteral("No Data found when processing the Report.  Sending message to administrator=") +
            schedule.SMTP_From;
    } else if (choice == QLatin1String("notify recipient")) {
        sender->AppendTextMsg(QStringLiteral("No data found when processing report:") + schedule.File() +
                              QStringLiteral("  (ID=") + schedule.ProcessingID + QLatin1Char(')'));
        sender->MailTo = ExpandAddressList(schedule.Email(), ListSources(schedule, run.log));
        sender->SendMail();
        logText = QStringLiteral("No Data in Report.  Sending message to recipients=") + schedule.Email();
    } else if (choice == QLatin1String("no report is sent")) {
        logText = QStringLiteral("No Data in Report.  No ouput generated and processed");
    } else {
        logText = QStringLiteral("No Data in Report.  Invalid option selected=") + schedule.NoRecords();
    }
    const double now = Now();
    WriteLogEntry(run.log, schedule.ProcessingID, now, now, QString(), logText, 0);
    sender->CloseForm();
    MailPause(schedule);
}

void MailPause(const clsSchedule &schedule)
{
    if (schedule.SMTPDelay == 0)
        return;
    AddSmtpLog(QStringLiteral("Now waiting for ") + QString::number(schedule.SMTPDelay) +
               QStringLiteral(" seconds before processing any more mail messages\r\n"));
    QCoreApplication::processEvents();
    const qint16 milliseconds = Numbers::ToInt16(double(schedule.SMTPDelay) * 1000);
    // A negative delay has no sleep to give.
    QThread::msleep(qMax<qint16>(milliseconds, 0));
    QCoreApplication::processEvents();
}

} // namespace SMTPMail
