// Excel exports (types 27 to 30, and 38 for data only): genuine Excel 97-2003 workbooks, typed cells,
// the report's number formats, further sheets when one is full, totals as worksheet formulas on request.
#include "engine/Codes.h"
#include "engine/DataExports.h"
#include "engine/EngineError.h"
#include "engine/GroupWalk.h"
#include "engine/RecordWalk.h"
#include "engine/RunningTotals.h"
#include "engine/Report.h"
#include "engine/ValueFormat.h"
#include "engine/xls/XlsSheetSeries.h"
#include "engine/xls/XlsWorkbook.h"

#include <QDateTime>
#include <map>
#include <memory>

namespace Engine {

namespace {

// The worksheet function of a summary over records, if it has one.
std::optional<XlsAggregate> FunctionOverRecords(SummaryFunction function, bool numericField)
{
    switch (function) {
    case SummaryFunction::Sum: return XlsAggregate::Sum;
    case SummaryFunction::Count: return numericField ? std::optional(XlsAggregate::Count) : std::nullopt;
    case SummaryFunction::Average: return XlsAggregate::Average;
    case SummaryFunction::Minimum: return XlsAggregate::Min;
    case SummaryFunction::Maximum: return XlsAggregate::Max;
    default: return std::nullopt;
    }
}

// The worksheet function that makes a summary from the same summary of the subgroups, if there is one.
std::optional<XlsAggregate> FunctionOverSubtotals(SummaryFunction function)
{
    switch (function) {
    case SummaryFunction::Sum:
    case SummaryFunction::Count: return XlsAggregate::Sum;
    case SummaryFunction::Minimum: return XlsAggregate::Min;
    case SummaryFunction::Maximum: return XlsAggregate::Max;
    default: return std::nullopt;
    }
}

// Where the rows of one open group went: its records, or the footers of its subgroups by column.
struct Span
{
    XlsSheet *sheet = nullptr;
    bool split = false; // on more than one sheet, or a subgroup without the total
    int firstDetail = -1;
    int lastDetail = -1;
    int subgroups = 0;
    QMap<int, std::pair<SummaryFunction, QList<int>>> subtotals; // column: the subgroups' function and rows

    void note(XlsSheet *on)
    {
        split = split || (sheet && sheet != on);
        sheet = on;
    }
};

class ExcelWriter : public GroupVisitor
{
public:
    // The rows go on `series` of `book`, after what it holds already.
    ExcelWriter(const Report &report, const ExportOptions &options, XlsWorkbook &book, XlsSheetSeries &series)
        : m_report(report), m_formulas(report.formulas()), m_columns(ExportColumns(report, true)),
          m_context(m_formulas, report.ReportTitle()), m_running(m_formulas),
          m_dataOnly(options.FormatType == ExcelDataOnlyFormat),
          m_worksheetFunctions(options.ExcelUseWorksheetFunctions && !m_dataOnly), m_book(book),
          m_series(series)
    {
        const bool tabular =
            options.FormatType == Excel70TabularFormat || options.FormatType == Excel80TabularFormat;
        QStringList headings;
        for (int c = 0; c < m_columns.size(); ++c) {
            const ExportColumn &column = m_columns[c];
            headings.append(column.caption);
            const bool numberPattern = !column.format.isEmpty() && !IsDatePattern(column.format);
            m_plain.append(numberPattern ? m_book.addStyle(column.format) : XlsStyle());
            m_bold.append(m_book.addStyle(numberPattern ? column.format : QStringLiteral("General"), true));
            m_series.setColumnWidth(c, std::max(column.width / 5.5, 4.0));
        }
        if (!tabular || options.ExcelTabHasColumnHeadings)
            m_series.setHeadings(headings);
        m_spans.emplace_back();
        m_context.setRunningTotals(&m_running.values());
    }

    void write()
    {
        if (m_dataOnly)
            ForEachRecord(m_report, [this](const ReportContext &context) { writeRecord(context); });
        else
            WalkGroups(m_report, *this);
    }

    // A row that says what follows: a sub-report and the group it stands for.
    void writeHeading(const QString &text)
    {
        const XlsRowPlace place = m_series.appendRow();
        place.sheet->writeText(place.row, 0, text, m_book.headingStyle());
    }

    void groupHeader(const GroupNode &group, bool) override
    {
        m_running.startGroup(group.level);
        enterGroup(group);
        const XlsRowPlace place = m_series.appendRow();
        place.sheet->writeText(place.row, 0,
                               m_formulas.group(group.level).caption.evaluate(m_context, group.value),
                               m_book.headingStyle());
        m_spans.emplace_back();
    }

    void detail(const RecordStore::Row &row, const GroupNode &group, int position) override
    {
        m_context.setRecord(row, position, &group);
        m_running.add(m_context);
        const XlsRowPlace place = writeRecord(m_context);
        Span &span = m_spans.back();
        span.note(place.sheet);
        if (span.firstDetail < 0)
            span.firstDetail = place.row;
        span.lastDetail = place.row;
    }

    void groupFooter(const GroupNode &group) override
    {
        const Span span = m_spans.back();
        m_spans.pop_back();
        Span &parent = m_spans.back();
        ++parent.subgroups;
        if (m_formulas.subtotals(group.level).empty()) {
            parent.split = true;
            return;
        }
        enterGroup(group);
        const XlsRowPlace place =
            writeTotals(m_formulas.group(group.level).footer.evaluate(m_context, group.value), group, span);
        parent.note(place.sheet);
        for (const Subtotal &subtotal : m_formulas.subtotals(group.level)) {
            const int column = columnOf(subtotal.operand);
            if (column < 0)
                continue;
            auto &[function, rows] = parent.subtotals[column];
            if (!rows.isEmpty() && function != subtotal.function)
                parent.split = true;
            function = subtotal.function;
            rows.append(place.row);
        }
    }

    void grandTotal(const GroupNode &root) override
    {
        if (m_formulas.subtotals(-1).empty())
            return;
        enterGroup(root);
        writeTotals(QStringLiteral("Grand total"), root, m_spans.back());
    }

private:
    int columnOf(const NameRef &source) const
    {
        for (int c = 0; c < m_columns.size(); ++c) {
            if (m_columns[c].source.kind == source.kind && m_columns[c].source.index == source.index)
                return c;
        }
        return -1;
    }

    // The group's header and footer read the fields of its first record.
    void enterGroup(const GroupNode &group)
    {
        const QList<int> &order = m_report.groups().order();
        m_context.setGroup(group, group.rowCount() > 0 ? m_report.records().row(order[group.first])
                                                       : RecordStore::Row());
    }

    XlsRowPlace writeRecord(const ReportContext &context)
    {
        const XlsRowPlace place = m_series.appendRow();
        for (int c = 0; c < m_columns.size(); ++c)
            writeCell(place, c, context.valueOf(m_columns[c].source), m_plain[c]);
        return place;
    }

    // Dates keep their time of day when they have one.
    void writeMoment(const XlsRowPlace &place, int column, const QDateTime &moment, bool withTime)
    {
        place.sheet->writeDate(place.row, column, moment,
                               withTime ? m_book.dateTimeStyle() : m_book.dateStyle());
    }

    void writeCell(const XlsRowPlace &place, int column, const QVariant &value, XlsStyle style)
    {
        double number = 0;
        switch (value.typeId()) {
        case QMetaType::UnknownType: return;
        case QMetaType::Bool: return place.sheet->writeBool(place.row, column, value.toBool(), style);
        case QMetaType::QDate: return writeMoment(place, column, MomentOf(value), false);
        case QMetaType::QDateTime: return writeMoment(place, column, MomentOf(value), true);
        case QMetaType::QString: {
            // SQLite keeps dates as text: a date column still gets date cells.
            const QDateTime moment = IsDatePattern(m_columns[column].format) ? MomentOf(value) : QDateTime();
            if (moment.isValid())
                return writeMoment(place, column, moment, value.toString().trimmed().size() > 10);
            return place.sheet->writeText(place.row, column, value.toString(), style);
        }
        default:
            if (NumberOf(value, number))
                return place.sheet->writeNumber(place.row, column, number, style);
            return place.sheet->writeText(place.row, column, PlainText(value), style);
        }
    }

    // The label in the first column; when a total belongs there, the label takes a row of its own.
    XlsRowPlace writeTotals(const QString &label, const GroupNode &group, const Span &span)
    {
        const std::vector<Subtotal> &subtotals = m_formulas.subtotals(group.level);
        XlsRowPlace place = m_series.appendRow();
        place.sheet->writeText(place.row, 0, label, m_book.headingStyle());
        const bool firstColumnTaken =
            std::any_of(subtotals.begin(), subtotals.end(),
                        [this](const Subtotal &s) { return columnOf(s.operand) == 0; });
        if (firstColumnTaken)
            place = m_series.appendRow();
        for (const Subtotal &subtotal : subtotals) {
            const int column = columnOf(subtotal.operand);
            const QVariant value = m_context.summary(subtotal.ref);
            if (column >= 0 && !writeFormula(place, column, subtotal.function, value, group, span))
                writeCell(place, column, value, m_bold[column]);
        }
        return place;
    }

    // A total as the formula over the records or subtotals above it, when the options ask for formulas
    // and those cells are all on the total's sheet; false when it must be a plain value.
    bool writeFormula(const XlsRowPlace &place, int column, SummaryFunction function, const QVariant &value,
                      const GroupNode &group, const Span &span)
    {
        double number = 0;
        if (!m_worksheetFunctions || span.split || span.sheet != place.sheet || !NumberOf(value, number))
            return false;
        std::optional<XlsAggregate> aggregate;
        QList<XlsRange> ranges;
        if (group.children.empty()) {
            const int type = m_columns[column].valueType;
            aggregate = FunctionOverRecords(function, type == NumberField || type == CurrencyField);
            if (span.firstDetail >= 0)
                ranges.append(XlsRange{span.firstDetail, span.lastDetail, column, column});
        } else {
            const auto found = span.subtotals.constFind(column);
            if (found == span.subtotals.constEnd() || found->first != function ||
                found->second.size() != span.subgroups || found->second.size() > MaxAggregateArguments)
                return false;
            aggregate = FunctionOverSubtotals(function);
            for (int row : found->second)
                ranges.append(XlsRange{row, row, column, column});
        }
        if (!aggregate || ranges.isEmpty())
            return false;
        place.sheet->writeAggregate(place.row, column, *aggregate, ranges, number, m_bold[column]);
        return true;
    }

    const Report &m_report;
    const ReportFormulas &m_formulas;
    QList<ExportColumn> m_columns;
    ReportContext m_context;
    RunningTotals m_running;
    bool m_dataOnly;
    bool m_worksheetFunctions;
    XlsWorkbook &m_book;
    XlsSheetSeries &m_series;
    QList<XlsStyle> m_plain;
    QList<XlsStyle> m_bold;
    std::vector<Span> m_spans; // the report's, then one for each open group
};

// Each sub-report on sheets of its own, named after it; one in a group's section once for each group,
// each time under a heading row.
void WriteSubreportSheets(const Report &report, const ExportOptions &options, XlsWorkbook &book)
{
    std::map<SubreportObject *, std::unique_ptr<XlsSheetSeries>> sheets;
    ForEachSubreport(report, [&](SubreportObject &object, const QString &group) {
        const Report &subreport = object.OpenSubreport();
        if (!subreport.hasRecords())
            return;
        std::unique_ptr<XlsSheetSeries> &series = sheets[&object];
        if (!series)
            series = std::make_unique<XlsSheetSeries>(book, object.Name());
        ExcelWriter writer(subreport, options, book, *series);
        const QString title = object.Heading();
        if (!group.isEmpty())
            writer.writeHeading(title + QStringLiteral(": ") + group);
        writer.write();
        WriteSubreportSheets(subreport, options, book);
    });
}

} // namespace

void WriteExcelWorkbook(const Report &report, const ExportOptions &options, const QString &fileName)
{
    XlsWorkbook book;
    XlsSheetSeries sheets(book, QStringLiteral("Sheet"));
    ExcelWriter(report, options, book, sheets).write();
    WriteSubreportSheets(report, options, book);
    if (!book.save(fileName))
        throw EngineError(EngineError::ExportFailed,
                          QStringLiteral("Cannot write %1: %2").arg(fileName, book.errorString()));
}

} // namespace Engine
