// Excel exports (types 27 to 30, and 38 for data only): genuine Excel 97-2003 workbooks, typed cells,
// the report's number formats, further sheets when one is full.
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

class ExcelWriter : public GroupVisitor
{
public:
    ExcelWriter(const Report &report, const ExportOptions &options)
        : m_layout(report.definition().layout), m_columns(ExportColumns(report)),
          m_dataOnly(options.FormatType == ExcelDataOnlyFormat), m_series(m_book, QStringLiteral("Sheet"))
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
    }

    void detail(const RecordStore::Row &row, const GroupNode &, int) override { writeRecord(row); }

    void groupFooter(const GroupNode &group) override
    {
        if (group.totals.size() > 0)
            writeTotals(QStringLiteral("Total ") + PlainText(group.value), group.totals);
    }

    void grandTotal(const GroupNode &root) override
    {
        if (root.totals.size() > 0)
            writeTotals(QStringLiteral("Grand total"), root.totals);
    }

private:
    void writeRecord(const RecordStore::Row &row)
    {
        const XlsRowPlace place = m_series.appendRow();
        for (int c = 0; c < m_columns.size(); ++c) {
            if (m_columns[c].field >= 0)
                writeCell(place, c, row[m_columns[c].field], m_plain[c]);
        }
    }

    void writeCell(const XlsRowPlace &place, int column, const QVariant &value, XlsStyle style)
    {
        double number = 0;
        switch (value.typeId()) {
        case QMetaType::UnknownType: return;
        case QMetaType::Bool: return place.sheet->writeBool(place.row, column, value.toBool(), style);
        case QMetaType::QDate:
        case QMetaType::QDateTime: return place.sheet->writeDate(place.row, column, value.toDateTime());
        case QMetaType::QString: {
            // SQLite keeps dates as text: a date column still gets date cells.
            const QDateTime moment = IsDatePattern(m_columns[column].format) ? MomentOf(value) : QDateTime();
            if (moment.isValid())
                return place.sheet->writeDate(place.row, column, moment);
            return place.sheet->writeText(place.row, column, value.toString(), style);
        }
        default:
            if (NumberOf(value, number))
                return place.sheet->writeNumber(place.row, column, number, style);
            return place.sheet->writeText(place.row, column, PlainText(value), style);
        }
    }

    // The label in the first column; when a total belongs there, the label takes a row of its own.
    void writeTotals(const QString &label, const Totals &totals)
    {
        XlsRowPlace place = m_series.appendRow();
        place.sheet->writeText(place.row, 0, label, m_book.headingStyle());
        bool firstColumnTaken = false;
        for (int t = 0; t < totals.size(); ++t)
            firstColumnTaken =
                firstColumnTaken || (!m_columns.isEmpty() && m_columns[0].field == totals.fieldIndex(t));
        if (firstColumnTaken)
            place = m_series.appendRow();
        for (int t = 0; t < totals.size(); ++t) {
            for (int c = 0; c < m_columns.size(); ++c) {
                if (m_columns[c].field == totals.fieldIndex(t))
                    writeCell(place, c, totals.value(t), m_bold[c]);
            }
        }
    }

    const LayoutDefinition &m_layout;
    QList<ExportColumn> m_columns;
    bool m_dataOnly;
    XlsWorkbook m_book;
    XlsSheetSeries m_series;
    QList<XlsStyle> m_plain;
    QList<XlsStyle> m_bold;
};

} // namespace

void WriteExcelWorkbook(const Report &report, const ExportOptions &options, const QString &fileName)
{
    ExcelWriter(report, options).write(report, fileName);
}

} // namespace Engine
