#pragma once
// One worksheet of an Excel 97-2003 workbook: cells are encoded into records as they are written.

#include "engine/xls/CompoundFile.h"
#include "engine/xls/XlsFormula.h"
#include "engine/xls/XlsStyles.h"

#include <QByteArray>
#include <QMap>
#include <QString>

class QDateTime;

namespace Engine {

class XlsSharedStrings;

class XlsSheet
{
public:
    static constexpr int MaxRows = 65536;
    static constexpr int MaxColumns = 256;
    static constexpr int MaxTextLength = 32767;

    XlsSheet(const XlsSheet &) = delete;
    XlsSheet &operator=(const XlsSheet &) = delete;

    QString name() const { return m_name; }
    // One past the last row written (0 for an empty sheet).
    int rowCount() const { return m_lastRow + 1; }

    // Every write throws EngineError (SubscriptOutOfRange) for a row or column outside the sheet or a
    // style of another workbook, and writes nothing then. A cell written twice keeps the later value. A
    // number that is not finite becomes the error value #NUM!.
    void writeNumber(int row, int column, double value, XlsStyle style = {});
    // Throws EngineError (ExportFailed) for text longer than MaxTextLength, which no cell can hold.
    void writeText(int row, int column, const QString &text, XlsStyle style = {});
    // A day count (day 0 = 30 December 1899, time of day as the fraction) in the workbook's date style.
    void writeDate(int row, int column, double days);
    // An invalid moment (a null date) gives a blank cell in the date style.
    void writeDate(int row, int column, const QDateTime &moment);
    // The same in a style of the caller's, such as the workbook's date and time style.
    void writeDate(int row, int column, const QDateTime &moment, XlsStyle style);
    void writeBool(int row, int column, bool value, XlsStyle style = {});
    void writeBlank(int row, int column, XlsStyle style);
    // FUNCTION(range) on this sheet, with the result a reader shows until it recalculates.
    void writeAggregate(int row, int column, XlsAggregate function, const XlsRange &range, double result,
                        XlsStyle style = {});
    // FUNCTION(range, ...) of at most MaxAggregateArguments ranges (EngineError beyond).
    void writeAggregate(int row, int column, XlsAggregate function, const QList<XlsRange> &ranges,
                        double result, XlsStyle style = {});
    // The width of a column in characters of the default font (0 to 255).
    void setColumnWidth(int column, double characters);

private:
    friend class XlsWorkbook;
    XlsSheet(const QString &name, XlsSharedStrings &strings, const XlsStyles &styles, XlsStyle dateStyle);

    // The records before the cells (BOF, column widths, DIMENSIONS) and after them (WINDOW2, EOF).
    QByteArray prolog() const;
    QByteArray epilog(bool selected) const;
    qint64 cellsSize() const { return m_parkedOffset < 0 ? m_cells.size() : m_parkedSize; }
    // The cell records, in memory or in the spool that park() moved them to.
    StreamPart cells(QIODevice *spool) const;
    // Moves the cell records of a finished sheet to the end of the spool; false when it cannot.
    bool park(QIODevice &spool);

    void putCell(quint16 id, int dataSize, int row, int column, XlsStyle style);
    void writeError(int row, int column, quint8 code, XlsStyle style);
    QByteArray dimensions() const;

    QString m_name;
    XlsSharedStrings &m_strings;
    const XlsStyles &m_styles;
    XlsStyle m_dateStyle;
    QByteArray m_cells;
    qint64 m_parkedOffset = -1;
    qint64 m_parkedSize = 0;
    QMap<int, quint16> m_columnWidths;
    int m_firstRow = MaxRows;
    int m_lastRow = -1;
    int m_firstColumn = MaxColumns;
    int m_lastColumn = -1;
};

} // namespace Engine
