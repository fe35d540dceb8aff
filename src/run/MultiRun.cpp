#include "MultiRun.h"

#include "LogResult.h"
#include "MailSources.h"
#include "MultiRunDelivery.h"
#include "OutputFormat.h"
#include "ReportBinding.h"
#include "ReportDelivery.h"
#include "RunState.h"
#include "SMTPMail.h"

#include "calendar/EvaluateDate.h"
#include "core/Clock.h"
#include "core/CommonFile.h"
#include "core/DayDate.h"
#include "core/LineReader.h"
#include "core/Numbers.h"
#include "core/QorloError.h"
#include "core/StopRequest.h"
#include "core/WholeFile.h"
#include "log/clsLog.h"
#include "mail/AddressList.h"
#include "mail/SmtpLog.h"
#include "store/clsSchedule.h"

#include <QFileInfo>

using ReportDelivery::MailRunOf;

namespace {

const QString kCrLf = QStringLiteral("\r\n");
const QString kAll = QStringLiteral("*ALL*");
const QString kTableMap = QStringLiteral("{$TableMap}");

// ErrorTo is tested here as a truth value, not as text: only "True", "False" and numbers convert, and
// any other address makes this branch fail with a type mismatch that unwinds out of the run. Every
// other use of ErrorTo in the program tests for empty text.
void RequireTruthValue(const QString &errorTo)
{
    if (errorTo != QLatin1StringView("True") && errorTo != QLatin1StringView("False") &&
        !Numbers::IsNumeric(errorTo))
        throw QorloError(QorloError::TypeMismatch);
}

void ReportMissingFile(RunContext &run, const QString &fileName)
{
    clsSchedule &schedule = run.schedule;
    const QString text = QStringLiteral("Cannot File Multirun File=") + fileName;
    const double now = Now();
    WriteLogEntry(run.log, schedule.ProcessingID, now, now, QString(), text, 0);
    if (schedule.ErrorTo().isEmpty())
        return;
    RequireTruthValue(schedule.ErrorTo());
    ReportDelivery::SendErrorMail(run, schedule.ErrorTo(), text);
}

// A fresh copy of the report for every line; a failing open unwinds, whatever state the trap was left in.
void OpenReport(RunContext &run)
{
    ErrorTrap unwinding;
    unwinding.Guard([&] { run.state.report = run.state.application->OpenReport(run.schedule.File()); });
}

MultiRun::Line ParseLine(QStringList fields, double start)
{
    for (QString &field : fields)
        field = MultiRun::StripQuotes(field);
    MultiRun::Line line{fields[0], fields[1], fields[2], fields[3], fields[4], fields[5], QString(), start};
    const QString shownValue = line.parameter == kAll
                                   ? QString(line.value).replace(QLatin1Char('}'), QStringLiteral("}="))
                                   : line.value;
    line.label = line.parameter + QStringLiteral(" = ") + shownValue;
    return line;
}

void ReportBadLine(RunContext &run, const QString &text, MultiRun::Totals &totals)
{
    clsSchedule &schedule = run.schedule;
    const QString message = QStringLiteral("Cannot Process MultiRun Line=") + text;
    const double now = Now();
    WriteLogEntry(run.log, schedule.ProcessingID, now, now, QString(), message, 0);
    ReportDelivery::SendErrorMail(run, schedule.MultiRunLineErrorTo(), message);
    ++totals.errors;
}

void AddParameterValues(RunContext &run, Engine::ParameterFieldDefinition &field, const QString &text)
{
    const QString value =
        AddressList::ExpandAddressList(text, MailSources::ListSources(run.schedule, run.log));
    QStringList pieces{value};
    if (value.contains(QLatin1Char(';')))
        pieces = value.split(QLatin1Char(';'), Qt::SkipEmptyParts);
    for (const QString &piece : pieces) {
        run.state.trap.Guard(
            [&] { field.AddCurrentValue(MultiRun::ParameterValue(run.schedule, piece, field.ValueType())); });
    }
}

// Saved data, parameters, connections, the line's values, its table expression and its format. The
// connection and parameter errors of the item are not looked at: each line stands on its own.
void PrepareReport(RunContext &run, const MultiRun::Line &line)
{
    Engine::Report &report = *run.state.report;
    if (report.HasSavedData())
        report.DiscardSavedData();
    for (Engine::ParameterFieldDefinition &field : report.ParameterFields())
        field.ClearCurrentValueAndRange();
    ReportBinding::LogOnReport(run, report, run.schedule.ReportID());
    ReportBinding::SetParameters(run, line.parameter);
    const bool all = line.parameter == kAll;
    for (Engine::ParameterFieldDefinition &field : report.ParameterFields()) {
        if (all)
            AddParameterValues(run, field, MultiRun::ValueAfterTag(field.Name(), line.value));
        else if (field.Name() == line.parameter)
            AddParameterValues(run, field, line.value);
    }
    const QString expression = all                           ? MultiRun::ValueAfterTag(kTableMap, line.value)
                               : line.parameter == kTableMap ? line.value
                                                             : QString();
    if (!expression.isEmpty())
        MultiRun::ApplyTableExpression(report, expression);
    SetOutputFormat(run, report, line.format);
}

// The read runs with the trap as the lines found it, normally off, so that a failure unwinds. False when
// a trap left armed by an earlier run recorded a failure: that ends the whole multi-run.
bool ReadRecords(RunContext &run, const MultiRun::Line &line)
{
    ErrorTrap &trap = run.state.trap;
    clsSchedule &schedule = run.schedule;
    trap.Guard([&] { run.state.report->ReadRecords(); });
    if (!trap.IsSet())
        return true;
    const qint32 code = trap.Code();
    const QString text = QLatin1Char('(') + QString::number(code) + QStringLiteral(") ") + trap.Description();
    trap.Clear();
    LogResult(run, line.start,
              QStringLiteral("ERROR: ") + text + QStringLiteral(" for disk file ") + line.output, code);
    trap.Guard([&] { ReportDelivery::SendErrorMail(run, schedule.MultiRunLineErrorTo(), text); });
    return false;
}

bool HasNoData(RunContext &run)
{
    return run.state.report->PrintingStatus().NumberOfRecordSelected() == 0 &&
           run.schedule.NoRecords().toLower() != QLatin1StringView("send empty report");
}

// One line of the file; false when a failed read ends the whole multi-run.
bool RunLine(RunContext &run, QStringView rawLine, MultiRun::Totals &totals)
{
    OpenReport(run);
    const double start = Now();
    const QString text = rawLine.trimmed().toString();
    if (text.isEmpty() || MultiRun::IsComment(text))
        return true;
    const QStringList fields = text.split(QLatin1Char(','));
    if (fields.size() != 6) {
        ReportBadLine(run, text, totals);
        return true;
    }
    const MultiRun::Line line = ParseLine(fields, start);
    totals.reports = Numbers::ToInt16(double(totals.reports) + 1);
    PrepareReport(run, line);
    if (!ReadRecords(run, line))
        return false;
    if (HasNoData(run)) {
        SMTPMail::SendNoDataMail(MailRunOf(run));
        return true;
    }
    MultiRun::Deliver(run, line, totals);
    return true;
}

// The total goes to the error recipients when a line failed, else to the notice recipients.
void SendTotalMail(RunContext &run, const QString &total, qint32 errors)
{
    clsSchedule &schedule = run.schedule;
    const auto withOwnText = [&](const QString &own) { return own.isEmpty() ? total : own + kCrLf + total; };
    if (errors > 0)
        ReportDelivery::SendErrorMail(run, schedule.ErrorTo(), withOwnText(schedule.ErrorMsg()));
    else
        ReportDelivery::SendNotifyMail(run, schedule.NotifyTo(), withOwnText(schedule.NotifyMsg()));
}

} // namespace

void RunMultiRun(RunContext &run, const QString &fileName)
{
    clsSchedule &schedule = run.schedule;
    RunState &state = run.state;
    if (!WholeFile::IsWholeFile(fileName)) {
        ReportMissingFile(run, fileName);
        return;
    }
    if (!QFileInfo::exists(schedule.File()))
        return;
    const double start = Now();
    // The report goes before the application that opened it.
    state.report.reset();
    state.application = std::make_unique<Engine::Application>();
    SmtpLog::StartSmtpLog(QStringLiteral("Start Multirun=") + schedule.Name());

    MultiRun::Totals totals;
    LineReader reader(fileName);
    while (!reader.atEnd()) {
        StopRequest::Check();
        if (!RunLine(run, reader.readLineView(), totals))
            return;
    }
    state.report.reset();
    state.application.reset();
    schedule.SetLastRun(FormatDateTime(Now()));
    const QString total = QStringLiteral("MultiRun Completed (") + QString::number(totals.reports) +
                          QStringLiteral(" reports and  ") + QString::number(totals.errors) +
                          QStringLiteral(" errors)");
    LogResult(run, start, total, totals.pages);
    SendTotalMail(run, total, totals.errors);
    schedule.Save(CommonFile::JoinPath(run.appPath, QStringLiteral("Qorlo.XML")));
}

namespace MultiRun {

bool IsComment(const QString &line)
{
    return line.size() >= 3 && line.startsWith(QLatin1StringView("//"));
}

QString StripQuotes(const QString &field)
{
    const QLatin1Char quote('"');
    if (field.size() >= 2 && field.startsWith(quote) && field.endsWith(quote))
        return field.mid(1, field.size() - 2);
    return field;
}

QString ValueAfterTag(const QString &tag, const QString &text)
{
    const qsizetype at = text.indexOf(tag);
    if (at < 0)
        return QString();
    const qsizetype from = at + tag.size();
    const qsizetype end = text.indexOf(QLatin1Char('{'), from);
    return text.mid(from, end < 0 ? -1 : end - from);
}

QVariant ParameterValue(clsSchedule &schedule, const QString &text, int valueType)
{
    switch (valueType) {
    case Engine::NumberField:
    case Engine::CurrencyField: return Numbers::NumericPrefix(text);
    case Engine::BooleanField: return text == QLatin1StringView("True");
    case Engine::DateField:
    case Engine::DateTimeField: return DayDate::ToDateTime(DynDates::EvaluateDate(schedule, text));
    case Engine::StringField: return text;
    default: return QVariant();
    }
}

void ApplyTableExpression(Engine::Report &report, const QString &expression)
{
    const qsizetype equals = expression.indexOf(QLatin1Char('='));
    if (equals < 0)
        return;
    const QString old = expression.left(equals).toLower();
    const QString replacement = expression.mid(equals + 1);
    for (Engine::DatabaseTable &table : report.Database().Tables()) {
        const QString location = table.Location();
        const qsizetype at = location.toLower().indexOf(old);
        if (at >= 0)
            table.setLocation(location.left(at) + replacement + location.mid(at + old.size()));
    }
}

} // namespace MultiRun
