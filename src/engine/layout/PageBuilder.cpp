#include "engine/layout/PageBuilder.h"

#include "engine/Interruption.h"
#include "engine/Report.h"

namespace Engine {

PageBuilder::PageBuilder(const Report &report, PageSink *sink, int totalPages)
    : m_report(report), m_layout(report.definition().layout),
      m_context(report.formulas(), report.ReportTitle()), m_sink(sink), m_total(totalPages)
{
    const PageSetup setup = report.pageSetup();
    const QSizeF size = setup.orientedSize();
    m_content = QRectF(QPointF(setup.margins.left(), setup.margins.top()),
                       QPointF(size.width() - setup.margins.right(), size.height() - setup.margins.bottom()));
    // Four thirds of the font size: 12 points at 9, the pitch of six text lines an inch.
    m_lineHeight = m_layout.fontSize * 4 / 3;
    m_bottom = m_content.bottom() - m_lineHeight * 1.5;
}

PageFont PageBuilder::font(bool bold, double grow) const
{
    PageFont font;
    font.pointSize = m_layout.fontSize + grow;
    font.bold = bold;
    return font;
}

double PageBuilder::bodyHeight() const
{
    const double header = m_layout.pageHeader.isEmpty() ? 0 : m_lineHeight * 1.5;
    const double captions = m_columns ? m_lineHeight * 1.2 : 0;
    return m_bottom - m_content.top() - header - captions;
}

void PageBuilder::setColumns(const ColumnSet *columns)
{
    m_columns = columns;
    m_captionsPlaced = false;
}

void PageBuilder::place(const Band &band)
{
    m_chain.push_back(band);
    if (!band.keepWithNext)
        placeChain();
}

bool PageBuilder::fits(double height) const
{
    return m_y + height <= m_bottom;
}

double PageBuilder::chainHeight() const
{
    double height = 0;
    for (const Band &band : m_chain)
        height += band.height;
    if (m_columns && !m_captionsPlaced && m_chain.front().needsCaptions)
        height += m_lineHeight * 1.2;
    return height;
}

// A chain that does not fit goes to the next page whole; one taller than a page breaks where it must.
void PageBuilder::placeChain()
{
    const Band &lead = m_chain.front();
    const double height = chainHeight();
    const bool keepGroup =
        lead.keepTogether > 0 && lead.keepTogether <= bodyHeight() && !fits(lead.keepTogether);
    if (m_open && m_bodyUsed && (lead.newPage || (height > 0 && !fits(height)) || keepGroup))
        endPage();
    for (const Band &band : m_chain) {
        const double captions = band.needsCaptions && !m_captionsPlaced && m_columns ? m_lineHeight * 1.2 : 0;
        if (m_open && m_bodyUsed && band.height > 0 && !fits(band.height + captions))
            endPage();
        if (!m_open)
            startPage();
        if (band.needsCaptions && !m_captionsPlaced && m_columns)
            putCaptions();
        put(band);
        m_bodyUsed = m_bodyUsed || band.height > 0;
    }
    m_chain.clear();
}

int PageBuilder::finish()
{
    if (!m_chain.empty())
        placeChain();
    if (!m_open)
        startPage();
    endPage();
    return m_number;
}

// Page headers and footers read the page and the report's totals.
QString PageBuilder::pageText(const TextTemplate &text)
{
    m_context.setRecord(RecordStore::Row(), -1, &m_report.groups().root());
    m_context.setPage(m_number, m_total);
    return text.evaluate(m_context);
}

void PageBuilder::startPage()
{
    m_page = Page();
    m_page.number = ++m_number;
    m_open = true;
    m_bodyUsed = false;
    m_captionsPlaced = false;
    m_y = m_content.top();
    if (!m_layout.pageHeader.isEmpty()) {
        Band header;
        header.height = m_lineHeight * 1.5;
        header.texts.append(PageText{QRectF(m_content.left(), 0, m_content.width(), m_lineHeight),
                                     pageText(m_report.formulas().pageHeader()), font(),
                                     Qt::AlignLeft | Qt::AlignVCenter});
        put(header);
    }
    if (m_openGroups.empty())
        return;
    if (m_columns)
        putCaptions();
    for (const auto &continued : m_openGroups) {
        if (continued)
            put(*continued);
    }
}

void PageBuilder::putCaptions()
{
    m_captionsPlaced = true;
    put(m_columns->captionBand(font(true), m_lineHeight, m_content));
}

void PageBuilder::endPage()
{
    if (!m_layout.pageFooter.isEmpty())
        m_page.texts.append(PageText{
            QRectF(m_content.left(), m_content.bottom() - m_lineHeight, m_content.width(), m_lineHeight),
            pageText(m_report.formulas().pageFooter()), font(), Qt::AlignHCenter | Qt::AlignVCenter});
    if (m_sink)
        m_sink->addPage(m_page);
    m_open = false;
    PollInterruption();
}

void PageBuilder::put(const Band &band)
{
    for (PageText text : band.texts) {
        text.box.translate(0, m_y);
        m_page.texts.append(text);
    }
    for (PageLine line : band.lines) {
        line.from.ry() += m_y;
        line.to.ry() += m_y;
        m_page.lines.append(line);
    }
    for (PageBox box : band.boxes) {
        box.rect.translate(0, m_y);
        m_page.boxes.append(box);
    }
    if (band.opensGroup >= 0) {
        m_openGroups.resize(size_t(band.opensGroup));
        m_openGroups.push_back(band.continued);
        m_page.anchors.append(PageAnchor{band.opensGroup, band.anchor, m_y});
    }
    if (band.closesGroup >= 0)
        m_openGroups.resize(size_t(std::min<int>(band.closesGroup, int(m_openGroups.size()))));
    m_y += band.height;
}

} // namespace Engine
