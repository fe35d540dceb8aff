#include "engine/xls/XlsSheet.h"

#include "engine/EngineError.h"
#include "engine/xls/Biff.h"
#include "engine/xls/XlsRk.h"
#include "engine/xls/XlsSharedStrings.h"

#include <QDateTime>
#include <QIODevice>
#include <cmath>

namespace Engine {

namespace {

constexpr quint8 NumError = 0x24;
constexpr quint16 WorksheetBof = 0x0010;
constexpr int CellHeader = 6; // row, column, XF index

void CheckAddress(int row, int column)
{
    if (row < 0 || row >= XlsSheet::MaxRows || column < 0 || column >= XlsSheet::MaxColumns)
        throw EngineError(
            EngineError::SubscriptOutOfRange,
            QStringLiteral("Cell (%1, %2) lies outside the 65,536 rows and 256 columns of a sheet.")
                .arg(row)
                .arg(column));
}

void CheckRange(const XlsRange &range)
{
    CheckAddress(range.firstRow, range.firstColumn);
    CheckAddress(range.lastRow, range.lastColumn);
    if (range.firstRow > range.lastRow || range.firstColumn > range.lastColumn)
        throw EngineError(EngineError::SubscriptOutOfRange,
                          QStringLiteral("A formula range ends before it starts."));
}

// The cached result of a formula: a number, or #NUM! when there is none.
void PutFormulaResult(QByteArray &out, double result)
{
    if (std::isfinite(result)) {
        Biff::PutDouble(out, result);
        return;
    }
    const char error[8] = {2, 0, char(NumError), 0, 0, 0, char(0xFF), char(0xFF)};
    out.append(error, 8);
}

} // namespace

XlsSheet::XlsSheet(const QString &name, XlsSharedStrings &strings, const XlsStyles &styles,
                   XlsStyle dateStyle)
    : m_name(name), m_strings(strings), m_styles(styles), m_dateStyle(dateStyle)
{
}

void XlsSheet::putCell(quint16 id, int dataSize, int row, int column, XlsStyle style)
{
    CheckAddress(row, column);
    if (!m_styles.has(style))
        throw EngineError(EngineError::SubscriptOutOfRange,
                          QStringLiteral("A cell style of another workbook."));
    m_firstRow = std::min(m_firstRow, row);
    m_lastRow = std::max(m_lastRow, row);
    m_firstColumn = std::min(m_firstColumn, column);
    m_lastColumn = std::max(m_lastColumn, column);
    Biff::Put16(m_cells, id);
    Biff::Put16(m_cells, quint16(CellHeader + dataSize));
    Biff::Put16(m_cells, quint16(row));
    Biff::Put16(m_cells, quint16(column));
    Biff::Put16(m_cells, style.xf());
}

void XlsSheet::writeNumber(int row, int column, double value, XlsStyle style)
{
    if (!std::isfinite(value))
        return writeError(row, column, NumError, style);
    if (const auto rk = EncodeRk(value)) {
        putCell(Biff::Rk, 4, row, column, style);
        Biff::Put32(m_cells, *rk);
        return;
    }
    putCell(Biff::Number, 8, row, column, style);
    Biff::PutDouble(m_cells, value);
}

void XlsSheet::writeText(int row, int column, const QString &text, XlsStyle style)
{
    if (text.size() > MaxTextLength)
        throw EngineError(
            EngineError::ExportFailed,
            QStringLiteral("A text of %1 characters is longer than a cell can hold.").arg(text.size()));
    putCell(Biff::LabelSst, 4, row, column, style);
    Biff::Put32(m_cells, m_strings.intern(text));
}

void XlsSheet::writeDate(int row, int column, double days)
{
    writeNumber(row, column, days, m_dateStyle);
}

void XlsSheet::writeDate(int row, int column, const QDateTime &moment)
{
    writeDate(row, column, moment, m_dateStyle);
}

void XlsSheet::writeDate(int row, int column, const QDateTime &moment, XlsStyle style)
{
    if (!moment.isValid())
        return writeBlank(row, column, style);
    // The wall-clock date and time as shown, whatever the zone.
    constexpr double MsecsPerDay = 86400000.0;
    const double day = double(QDate(1899, 12, 30).daysTo(moment.date()));
    writeNumber(row, column, day + moment.time().msecsSinceStartOfDay() / MsecsPerDay, style);
}

void XlsSheet::writeBool(int row, int column, bool value, XlsStyle style)
{
    putCell(Biff::BoolErr, 2, row, column, style);
    Biff::Put8(m_cells, value ? 1 : 0);
    Biff::Put8(m_cells, 0);
}

void XlsSheet::writeError(int row, int column, quint8 code, XlsStyle style)
{
    putCell(Biff::BoolErr, 2, row, column, style);
    Biff::Put8(m_cells, code);
    Biff::Put8(m_cells, 1);
}

void XlsSheet::writeBlank(int row, int column, XlsStyle style)
{
    putCell(Biff::Blank, 0, row, column, style);
}

void XlsSheet::writeAggregate(int row, int column, XlsAggregate function, const XlsRange &range,
                              double result, XlsStyle style)
{
    writeAggregate(row, column, function, QList<XlsRange>{range}, result, style);
}

void XlsSheet::writeAggregate(int row, int column, XlsAggregate function, const QList<XlsRange> &ranges,
                              double result, XlsStyle style)
{
    if (ranges.isEmpty() || ranges.size() > MaxAggregateArguments)
        throw EngineError(EngineError::SubscriptOutOfRange,
                          QStringLiteral("A formula takes 1 to %1 ranges, not %2.")
                              .arg(MaxAggregateArguments)
                              .arg(ranges.size()));
    for (const XlsRange &range : ranges)
        CheckRange(range);
    const QByteArray tokens = AggregateTokens(function, ranges);
    putCell(Biff::Formula, 8 + 2 + 4 + 2 + int(tokens.size()), row, column, style);
    PutFormulaResult(m_cells, result);
    Biff::Put16(m_cells, 0); // no recalculation flags: the result is the caller's own total
    Biff::Put32(m_cells, 0);
    Biff::Put16(m_cells, quint16(tokens.size()));
    m_cells.append(tokens);
}

void XlsSheet::setColumnWidth(int column, double characters)
{
    CheckAddress(0, column);
    m_columnWidths[column] = quint16(std::clamp(characters, 0.0, 255.0) * 256);
}

StreamPart XlsSheet::cells(QIODevice *spool) const
{
    if (m_parkedOffset < 0)
        return StreamPart{m_cells};
    return StreamPart{{}, spool, m_parkedOffset, m_parkedSize};
}

bool XlsSheet::park(QIODevice &spool)
{
    if (m_parkedOffset >= 0)
        return true;
    const qint64 offset = spool.size();
    if (!spool.seek(offset) || spool.write(m_cells) != m_cells.size())
        return false;
    m_parkedOffset = offset;
    m_parkedSize = m_cells.size();
    m_cells = QByteArray();
    return true;
}

QByteArray XlsSheet::dimensions() const
{
    QByteArray data;
    const bool empty = m_lastRow < 0;
    Biff::Put32(data, empty ? 0 : quint32(m_firstRow));
    Biff::Put32(data, quint32(m_lastRow + 1));
    Biff::Put16(data, empty ? 0 : quint16(m_firstColumn));
    Biff::Put16(data, quint16(m_lastColumn + 1));
    Biff::Put16(data, 0);
    return data;
}

QByteArray XlsSheet::prolog() const
{
    QByteArray out;
    QByteArray bof;
    Biff::Put16(bof, 0x0600); // BIFF8
    Biff::Put16(bof, WorksheetBof);
    Biff::Put16(bof, 0x0DBB); // build and year of the application that wrote the file
    Biff::Put16(bof, 0x07CC);
    Biff::Put32(bof, 0);
    Biff::Put32(bof, 0x0006); // readable by BIFF8 readers and later
    Biff::PutRecord(out, Biff::Bof, bof);
    for (auto width = m_columnWidths.cbegin(); width != m_columnWidths.cend(); ++width) {
        QByteArray data;
        Biff::Put16(data, quint16(width.key()));
        Biff::Put16(data, quint16(width.key()));
        Biff::Put16(data, width.value());
        Biff::Put16(data, XlsStyle::DefaultXf);
        Biff::Put16(data, 0x0002); // width set by hand
        Biff::Put16(data, 0);
        Biff::PutRecord(out, Biff::ColInfo, data);
    }
    Biff::PutRecord(out, Biff::Dimensions, dimensions());
    return out;
}

QByteArray XlsSheet::epilog(bool selected) const
{
    QByteArray out;
    QByteArray window;
    // Grid lines, headings, zeros, automatic grid colour, outline symbols; the active sheet is also
    // selected and shown.
    Biff::Put16(window, selected ? 0x06B6 : 0x00B6);
    Biff::Put16(window, 0);  // top row
    Biff::Put16(window, 0);  // left column
    Biff::Put32(window, 64); // grid colour: the automatic one
    Biff::Put16(window, 0);
    Biff::Put16(window, 0);
    Biff::Put32(window, 0);
    Biff::PutRecord(out, Biff::Window2, window);
    Biff::PutRecord(out, Biff::Eof, {});
    return out;
}

} // namespace Engine
