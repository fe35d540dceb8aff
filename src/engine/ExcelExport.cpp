// Excel exports (types 27 to 30, and 38 for data only): genuine Excel 97-2003 workbooks, typed cells,
// the report's number formats, further sheets when one is full, totals as worksheet formulas on request.
#include "engine/Codes.h"
#include "engine/DataExports.h"
#include "engine/EngineError.h"
#include "engine/GroupWalk.h"
#include "engine/Report.h"
#include "engine/ValueFormat.h"
#include "engine/xls/XlsSheetSeries.h"
#include "engine/xls/XlsWorkbook.h"

#include <QDateTime>

namespace Engine {

namespace {

// The worksheet function of a summary over records, if it has one.
std::optional<XlsAggregate> FunctionOverRecords(const QString &function, bool numericField)
{
    if (function == QLatin1String("sum"))
        return XlsAggregate::Sum;
    if (function == QLatin1String("count") && numericField)
        return XlsAggregate::Count;
    if (function == QLatin1String("avg"))
        return XlsAggregate::Average;
    if (function == QLatin1String("min"))
        return XlsAggregate::Min;
    if (function == QLatin1String("max"))
        return XlsAggregate::Max;
    return std::nullopt;
}

// The worksheet function that makes a summary from the same summary of the subgroups, if there is one.
std::optional<XlsAggregate> FunctionOverSubtotals(const QString &function)
{
    if (function == QLatin1String("sum") || function == QLatin1String("count"))
        return XlsAggregate::Sum;
    if (function == QLatin1String("min"))
        return XlsAggregate::Min;
    if (function == QLatin1String("max"))
        return XlsAggregate::Max;
    return std::nullopt;
}

// Where the rows of one open group went: its records, or the footers of its subgroups by column.
struct Span
{
    XlsSheet *sheet = nullptr;
    bool split = false; // on more than one sheet, or a subgroup without the total
    int firstDetail = -1;
    int lastDetail = -1;
    int subgroups = 0;
    QMap<int, std::pair<QString, QList<int>>> subtotals; // column: the subgroups' function and rows

    void note(XlsSheet *on)
    {
        split = split || (sheet && sheet != on);
        sheet = on;
    }
};

class ExcelWriter : public GroupVisitor
{
public:
    ExcelWriter(const Report &report, const ExportOptions &options)
        : m_layout(report.definition().layout), m_columns(ExportColumns(report, true)),
          m_dataOnly(options.FormatType == ExcelDataOnlyFormat),
          m_formulas(options.ExcelUseWorksheetFunctions && !m_dataOnly),
          m_series(m_book, QStringLiteral("Sheet"))
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
    }

    void write(const Report &report, const QString &fileName)
    {
        if (m_dataOnly) {
            for (int row : report.groups().order())
                writeRecord(report.records().row(row));
        } else {
            WalkGroups(report, *this);
        }
        if (!m_book.save(fileName))
            throw EngineError(EngineError::ExportFailed,
                              QStringLiteral("Cannot write %1: %2").arg(fileName, m_book.errorString()));
    }

    void groupHeader(const GroupNode &group, bool) override
    {
        const XlsRowPlace place = m_series.appendRow();
        place.sheet->writeText(place.row, 0,
                               QString(m_layout.groups[group.level].caption)
                                   .replace(QLatin1String("{value}"), PlainText(group.value)),
                               m_book.headingStyle());
        m_spans.emplace_back();
    }

    void detail(const RecordStore::Row &row, const GroupNode &, int) override
    {
        const XlsRowPlace place = writeRecord(row);
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
        if (group.totals.size() == 0) {
            parent.split = true;
            return;
        }
        const XlsRowPlace place = writeTotals(QStringLiteral("Total ") + PlainText(group.value), group, span);
        parent.note(place.sheet);
        for (int t = 0; t < group.totals.size(); ++t) {
            const int column = columnOf(group.totals.fieldIndex(t));
            if (column < 0)
                continue;
            auto &[function, rows] = parent.subtotals[column];
            if (!rows.isEmpty() && function != group.totals.summary(t).function)
                parent.split = true;
            function = group.totals.summary(t).function;
            rows.append(place.row);
        }
    }

    void grandTotal(const GroupNode &root) override
    {
        if (root.totals.size() > 0)
            writeTotals(QStringLiteral("Grand total"), root, m_spans.back());
    }

private:
    int columnOf(int field) const
    {
        for (int c = 0; c < m_columns.size(); ++c) {
            if (m_columns[c].field == field)
                return c;
        }
        return -1;
    }

    XlsRowPlace writeRecord(const RecordStore::Row &row)
    {
        const XlsRowPlace place = m_series.appendRow();
        for (int c = 0; c < m_columns.size(); ++c) {
            if (m_columns[c].field >= 0)
                writeCell(place, c, row[m_columns[c].field], m_plain[c]);
        }
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
        const Totals &totals = group.totals;
        XlsRowPlace place = m_series.appendRow();
        place.sheet->writeText(place.row, 0, label, m_book.headingStyle());
        bool firstColumnTaken = false;
        for (int t = 0; t < totals.size(); ++t)
            firstColumnTaken = firstColumnTaken || columnOf(totals.fieldIndex(t)) == 0;
        if (firstColumnTaken)
            place = m_series.appendRow();
        for (int t = 0; t < totals.size(); ++t) {
            const int column = columnOf(totals.fieldIndex(t));
            if (column >= 0 &&
                !writeFormula(place, column, totals.summary(t).function, totals.value(t), group, span))
                writeCell(place, column, totals.value(t), m_bold[column]);
        }
        return place;
    }

    // A total as the formula over the records or subtotals above it, when the options ask for formulas
    // and those cells are all on the total's sheet; false when it must be a plain value.
    bool writeFormula(const XlsRowPlace &place, int column, const QString &function, const QVariant &value,
                      const GroupNode &group, const Span &span)
    {
        double number = 0;
        if (!m_formulas || span.split || span.sheet != place.sheet || !NumberOf(value, number))
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

    const LayoutDefinition &m_layout;
    QList<ExportColumn> m_columns;
    bool m_dataOnly;
    bool m_formulas;
    XlsWorkbook m_book;
    XlsSheetSeries m_series;
    QList<XlsStyle> m_plain;
    QList<XlsStyle> m_bold;
    std::vector<Span> m_spans; // the report's, then one for each open group
};

} // namespace

void WriteExcelWorkbook(const Report &report, const ExportOptions &options, const QString &fileName)
{
    ExcelWriter(report, options).write(report, fileName);
}

} // namespace Engine
