#pragma once
// Rows appended across as many sheets as they need: a full sheet continues on the next one.

#include "engine/xls/XlsSheet.h"

#include <QList>
#include <QMap>
#include <QStringList>

namespace Engine {

class XlsWorkbook;

// Where the next row goes.
struct XlsRowPlace
{
    XlsSheet *sheet;
    int row;
};

class XlsSheetSeries
{
public:
    // The sheets are called BASE1, BASE2, ... ("Sheet1", "Sheet2" for "Sheet"); none exists before
    // the first row is appended.
    XlsSheetSeries(XlsWorkbook &book, const QString &baseName);

    // Headings repeated at the top of every sheet of the series, in the workbook's heading style.
    void setHeadings(const QStringList &headings);
    // Column widths given to every sheet of the series.
    void setColumnWidth(int column, double characters);

    // The place of the next row, opening the next sheet when the current one is full.
    XlsRowPlace appendRow();
    QList<XlsSheet *> sheets() const { return m_sheets; }

private:
    void openSheet();

    XlsWorkbook &m_book;
    QString m_baseName;
    QStringList m_headings;
    QMap<int, double> m_widths;
    QList<XlsSheet *> m_sheets;
    int m_nextRow = XlsSheet::MaxRows;
};

} // namespace Engine
