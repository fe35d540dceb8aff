#include "engine/xls/XlsSheetSeries.h"

#include "engine/EngineError.h"
#include "engine/xls/XlsWorkbook.h"

namespace Engine {

XlsSheetSeries::XlsSheetSeries(XlsWorkbook &book, const QString &baseName)
    : m_book(book), m_baseName(baseName)
{
}

void XlsSheetSeries::setHeadings(const QStringList &headings)
{
    if (headings.size() > XlsSheet::MaxColumns)
        throw EngineError(EngineError::SubscriptOutOfRange,
                          QStringLiteral("More headings than a sheet has columns."));
    m_headings = headings;
}

void XlsSheetSeries::setColumnWidth(int column, double characters)
{
    if (column < 0 || column >= XlsSheet::MaxColumns)
        throw EngineError(EngineError::SubscriptOutOfRange,
                          QStringLiteral("Column %1 lies outside the sheet.").arg(column));
    m_widths[column] = characters;
    for (XlsSheet *sheet : std::as_const(m_sheets))
        sheet->setColumnWidth(column, characters);
}

void XlsSheetSeries::openSheet()
{
    if (!m_sheets.isEmpty())
        m_book.parkSheet(*m_sheets.back());
    XlsSheet &sheet = m_book.addSheet(m_baseName + QString::number(m_sheets.size() + 1));
    for (auto width = m_widths.cbegin(); width != m_widths.cend(); ++width)
        sheet.setColumnWidth(width.key(), width.value());
    for (int column = 0; column < m_headings.size(); ++column)
        sheet.writeText(0, column, m_headings[column], m_book.headingStyle());
    m_sheets.append(&sheet);
    m_nextRow = m_headings.isEmpty() ? 0 : 1;
}

XlsRowPlace XlsSheetSeries::appendRow()
{
    if (m_nextRow >= XlsSheet::MaxRows)
        openSheet();
    return {m_sheets.back(), m_nextRow++};
}

} // namespace Engine
