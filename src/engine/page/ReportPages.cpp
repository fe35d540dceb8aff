#include "engine/page/ReportPages.h"

namespace Engine {

namespace {

bool Holds(const Page &page, const QString &text)
{
    for (const PageText &item : page.texts) {
        if (item.text.contains(text, Qt::CaseInsensitive))
            return true;
    }
    return false;
}

} // namespace

void ReportPages::begin(const PageSetup &setup, int pageCount)
{
    m_setup = setup;
    m_pageCount = pageCount;
    m_complete = false;
    m_pages.clear();
    m_pages.reserve(pageCount);
    m_groups.clear();
}

void ReportPages::addPage(const Page &page)
{
    m_pages.append(page);
    for (const PageAnchor &anchor : page.anchors)
        m_groups.append(Group{anchor.level, anchor.caption, page.number, anchor.y});
    if (m_pageAdded)
        m_pageAdded(page.number);
}

void ReportPages::end()
{
    m_complete = true;
}

int ReportPages::findText(const QString &text, int fromPage) const
{
    const int count = pagesArrived();
    if (text.isEmpty() || count == 0)
        return 0;
    const int start = qBound(1, fromPage, count);
    for (int step = 0; step < count; ++step) {
        const int number = (start - 1 + step) % count + 1;
        if (Holds(page(number), text))
            return number;
    }
    return 0;
}

QList<QRectF> ReportPages::textBoxes(int number, const QString &text) const
{
    QList<QRectF> boxes;
    if (text.isEmpty() || number < 1 || number > pagesArrived())
        return boxes;
    for (const PageText &item : page(number).texts) {
        if (item.text.contains(text, Qt::CaseInsensitive))
            boxes.append(item.box);
    }
    return boxes;
}

} // namespace Engine
