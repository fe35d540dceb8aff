#pragma once
// Places bands down the pages of a report: page header and footer, column captions on every page, the
// headers of open groups again on the pages that continue them, and bands kept together.

#include "engine/ReportContext.h"
#include "engine/layout/Band.h"
#include "engine/layout/ColumnSet.h"

#include <vector>

namespace Engine {

class Report;

class PageBuilder
{
public:
    // The pages of `report` (its page setup, header and footer). `sink` null: the measuring pass, which
    // only counts. `totalPages`: what the measuring pass counted.
    PageBuilder(const Report &report, PageSink *sink, int totalPages);

    QRectF content() const { return m_content; }
    // The pass that only counts pages: bands need their heights, not their texts.
    bool measuring() const { return !m_sink; }
    int pageNumber() const { return m_number; }
    // 0 while measuring.
    int totalPages() const { return m_total; }
    double lineHeight() const { return m_lineHeight; }
    // The line of column captions at the head of a page or a sub-report.
    double captionHeight() const { return m_lineHeight * 1.2; }
    // The height a page offers to bands below the page header and captions.
    double bodyHeight() const;
    PageFont font(bool bold = false, double grow = 0) const;

    // The columns whose captions head the pages from the next band on.
    void setColumns(const ColumnSet *columns);
    void place(const Band &band);
    // A sub-report's bands between nest() and unnest() open groups of their own and head their pages
    // with their own captions; unnest() gives back those of the report around it.
    struct Nesting
    {
        const ColumnSet *columns = nullptr;
        std::vector<std::shared_ptr<const Band>> openGroups;
    };
    Nesting nest();
    void unnest(const Nesting &outer);
    // Ends the last page; the number of pages.
    int finish();

private:
    void placeChain();
    bool fits(double height) const;
    double chainHeight() const;
    void startPage();
    void endPage();
    void put(const Band &band);
    void putCaptions();
    QString pageText(const TextTemplate &text);

    const Report &m_report;
    const LayoutDefinition &m_layout;
    ReportContext m_context; // of the page header and footer
    PageSink *m_sink;
    int m_total;
    QRectF m_content;
    double m_lineHeight;
    double m_bottom; // where the page footer's space begins
    double m_headerHeight = 0;
    const ColumnSet *m_columns = nullptr;
    std::vector<Band> m_chain; // bands waiting for the one they keep with
    // The continued headers of the groups open at the end of what was placed, outermost first.
    std::vector<std::shared_ptr<const Band>> m_openGroups;
    Page m_page;
    int m_number = 0;
    double m_y = 0;
    bool m_open = false;
    bool m_bodyUsed = false;
    bool m_captionsPlaced = false;
};

} // namespace Engine
