#pragma once
// The pages of one run kept for a viewer: each page as the paginator gives it (so the screen shows
// what the PDF and the printer get), the groups with the page each starts on, and text search.

#include "engine/page/PageModel.h"

#include <functional>

namespace Engine {

class ReportPages : public PageSink
{
public:
    struct Group
    {
        int level = 0; // 0 the outermost
        QString caption;
        int page = 0;
        double y = 0; // where it starts on its page, in points
    };

    // Called after each page has arrived, with its number: a viewer shows the first page at once.
    void setPageAdded(std::function<void(int)> pageAdded) { m_pageAdded = std::move(pageAdded); }

    void begin(const PageSetup &setup, int pageCount) override;
    void addPage(const Page &page) override;
    void end() override;

    const PageSetup &setup() const { return m_setup; }
    // What the measuring pass counted; the pages arrive one by one up to it.
    int pageCount() const { return m_pageCount; }
    int pagesArrived() const { return int(m_pages.size()); }
    bool complete() const { return m_complete; }
    const Page &page(int number) const { return m_pages[number - 1]; } // 1-based, arrived
    const QList<Group> &groups() const { return m_groups; }

    // The first arrived page from `fromPage` on (wrapping round to 1) with a text that holds `text` in
    // any case; 0 when none does.
    int findText(const QString &text, int fromPage) const;
    // The boxes of the page's texts that hold `text`, in any case.
    QList<QRectF> textBoxes(int number, const QString &text) const;

private:
    PageSetup m_setup;
    int m_pageCount = 0;
    bool m_complete = false;
    QList<Page> m_pages;
    QList<Group> m_groups;
    std::function<void(int)> m_pageAdded;
};

} // namespace Engine
