#include "MultiRunDelivery.h"

#include "MailSources.h"
#include "MailText.h"
#include "MultiRun.h"
#include "OutputNames.h"
#include "PrintReport.h"
#include "ReportBinding.h"
#include "ReportDelivery.h"
#include "RunState.h"
#include "SMTPMail.h"

#include "core/Clock.h"
#include "core/CommonFile.h"
#include "core/Numbers.h"
#include "core/QorloError.h"
#include "log/clsLog.h"
#include "mail/AddressList.h"
#include "store/clsSchedule.h"

#include <QDir>

#include <algorithm>

namespace MultiRun {

namespace {

const QString kCrLf = QStringLiteral("\r\n");

bool IsOneOf(const QString &text, std::initializer_list<QLatin1StringView> values)
{
    return std::find(values.begin(), values.end(), text) != values.end();
}

qint32 PageCountOf(RunContext &run)
{
    return run.state.report->PrintingStatus().NumberOfPages();
}

// The line's entries keep the running item's ID: only the total at the end moves the last-result fields.
void WriteEntry(RunContext &run, const Line &line, const QString &text, qint32 pages)
{
    WriteLogEntry(run.log, run.schedule.ProcessingID, line.start, Now(), QString(), text, pages);
}

QString MailName(RunContext &run, const QString &about)
{
    return run.schedule.Name() + QStringLiteral(" Multirun: ") + about;
}

void SendLineError(RunContext &run, const Line &line, const QString &description)
{
    clsSchedule &schedule = run.schedule;
    run.state.trap.Guard([&] {
        SMTPMail::SendErrorMail(ReportDelivery::MailRunOf(run), schedule.MultiRunLineErrorTo(),
                                schedule.MultiRunLineErrorMsg() + kCrLf + description, schedule.ReportID(),
                                MailName(run, line.label));
    });
}

// A delivery that worked: its entry, the line's notice (about the parameter or the whole label) and
// its pages added to the total.
void LineSucceeded(RunContext &run, const Line &line, Totals &totals, const QString &text,
                   const QString &noticeAbout)
{
    clsSchedule &schedule = run.schedule;
    const qint32 pages = PageCountOf(run);
    WriteEntry(run, line, schedule.ProcessingName + text, pages);
    run.state.trap.Guard([&] {
        SMTPMail::SendNotifyMail(ReportDelivery::MailRunOf(run), schedule.MultiRunLineSuccessTo(),
                                 schedule.MultiRunLineSuccessMsg(), schedule.ReportID(),
                                 MailName(run, noticeAbout));
    });
    totals.pages += pages;
}

void LineFailed(RunContext &run, const Line &line, Totals &totals)
{
    ErrorTrap &trap = run.state.trap;
    const QString description = trap.Description();
    WriteEntry(run, line,
               run.schedule.ProcessingName + QStringLiteral(": Error - ") + description +
                   QStringLiteral(" on ") + line.label,
               PageCountOf(run));
    SendLineError(run, line, description);
    trap.Clear();
    ++totals.errors;
}

// The staged export of a mail line, in the folder of the line's report number.
QString StageExport(RunContext &run, const Totals &totals)
{
    ErrorTrap &trap = run.state.trap;
    Engine::ExportOptions &options = run.state.report->ExportOptions();
    QString staged;
    trap.Guard([&] { staged = MultiRunFolder(run.appPath, totals.reports); });
    staged +=
        CommonFile::ChangeExtension(CommonFile::FileNameOnly(run.schedule.File()), run.state.OutputExtension);
    if (options.FormatType == Engine::HtmlFormat || options.FormatType == Engine::DhtmlFormat)
        options.HTMLFileName = staged;
    else
        options.DiskFileName = staged;
    options.DestinationType = Engine::DiskFileDestination;
    trap.Guard([&] { run.state.report->Export(false); });
    return staged;
}

void ToDisk(RunContext &run, const Line &line, Totals &totals)
{
    clsSchedule &schedule = run.schedule;
    ErrorTrap &trap = run.state.trap;
    Engine::Report &report = *run.state.report;
    if (line.output.trimmed().isEmpty()) {
        WriteEntry(run, line,
                   QStringLiteral("ERROR: (") + schedule.ProcessingName +
                       QStringLiteral(") No file name specified on ") + line.label,
                   PageCountOf(run));
        SendLineError(run, line, trap.Description());
        ++totals.errors;
        return;
    }
    report.ExportOptions().DestinationType = Engine::DiskFileDestination;
    QString output = line.output;
    trap.Guard([&] { output = OutputNames::ExpandFileCodes(output); });
    // HTML formats export to the HTMLFileName taken from the item's Location, not to this name.
    report.ExportOptions().DiskFileName = output;
    trap.Guard([&] { report.Export(false); });
    if (trap.IsSet()) {
        LineFailed(run, line, totals);
        return;
    }
    LineSucceeded(run, line, totals,
                  QStringLiteral(": Successful multirun output to ") + output + QStringLiteral(" for ") +
                      line.label,
                  line.parameter);
}

void ByMail(RunContext &run, const Line &line, Totals &totals)
{
    clsSchedule &schedule = run.schedule;
    const Engine::Report *report = run.state.report.get();
    const QString staged = StageExport(run, totals);
    // Expanded here and once more by the sender.
    QString subject = schedule.RptSubject().isEmpty()
                          ? schedule.Name()
                          : OutputNames::ExpandMailText(schedule.RptSubject(), report, run.appPath);
    QString to = line.extra;
    if (IsOneOf(line.destination, {QLatin1StringView("E"), QLatin1StringView("EMail")})) {
        to = line.output;
        if (!line.extra.isEmpty())
            subject = OutputNames::ExpandMailText(line.extra, report, run.appPath);
    }
    QString lineError;
    if (schedule.SMTP_Server.isEmpty() || schedule.SMTP_From.isEmpty())
        lineError = QStringLiteral("ERROR: No mail server or sender specified");
    else if (to.isEmpty())
        lineError = QStringLiteral("ERROR: No address to send email to");
    if (!lineError.isEmpty()) {
        WriteEntry(run, line, lineError, 0);
    } else {
        run.state.trap.Guard([&] {
            SMTPMail::SendReportMail(ReportDelivery::MailRunOf(run), to, staged, subject,
                                     schedule.MailAttach());
        });
    }
    if (run.state.trap.IsSet() || !lineError.isEmpty()) {
        LineFailed(run, line, totals);
        return;
    }
    LineSucceeded(run, line, totals,
                  QStringLiteral(": Successful multirun email to ") + to + QStringLiteral(" for ") +
                      line.label,
                  line.parameter);
}

void ToPrinters(RunContext &run, const Line &line, Totals &totals)
{
    clsSchedule &schedule = run.schedule;
    ErrorTrap &trap = run.state.trap;
    // A count beyond 16 bits is recorded as the line's failure and one copy is printed.
    qint16 copies = 1;
    trap.Guard([&] { copies = PrintCopies(line.extra); });
    const QString printers =
        AddressList::ExpandAddressList(line.output, MailSources::ListSources(schedule, run.log));
    for (const QString &printer : printers.split(QLatin1Char(';')))
        PrintReport(run, *run.state.report, printer, copies);
    if (trap.IsSet()) {
        LineFailed(run, line, totals);
        return;
    }
    LineSucceeded(run, line, totals,
                  QStringLiteral(": Successful multirun print on ") + line.output + QStringLiteral(" for ") +
                      line.label,
                  line.label);
}

} // namespace

QString MultiRunFolder(const QString &appPath, qint16 counter)
{
    const QString folder =
        CommonFile::JoinPath(appPath, QStringLiteral("Multirun/MR-") + Numbers::FormatZeros(counter, 5)) +
        QLatin1Char('/');
    QDir staging(folder);
    if (!staging.exists()) {
        OutputNames::MakeFolders(folder);
        return folder;
    }
    for (const QString &name : staging.entryList(QDir::Files | QDir::Hidden)) {
        if (!staging.remove(name))
            throw QorloError(QorloError::PermissionDenied);
    }
    return folder;
}

qint16 PrintCopies(const QString &extra)
{
    return qMax<qint16>(Numbers::ToInt16(Numbers::NumericPrefix(extra)), 1);
}

void Deliver(RunContext &run, const Line &line, Totals &totals)
{
    using L = QLatin1StringView;
    const QString &dest = line.destination;
    run.state.trap.Arm();
    if (IsOneOf(dest, {L("D"), L("B"), L("Disk"), L("Both")}))
        ToDisk(run, line, totals);
    if (IsOneOf(dest, {L("E"), L("B"), L("EMail"), L("Both")}))
        ByMail(run, line, totals);
    if (IsOneOf(dest, {L("P"), L("Printer")}))
        ToPrinters(run, line, totals);
    ReportBinding::LogOffServers(run);
    run.state.trap.Disarm();
}

} // namespace MultiRun
