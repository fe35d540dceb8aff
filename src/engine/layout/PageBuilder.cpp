#include "engine/layout/PageBuilder.h"

#include "engine/Report.h"
#include "engine/StopCheck.h"
#include "engine/layout/Pictures.h"

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
    if (!m_layout.pageHeader.isEmpty())
        m_headerHeight = m_lineHeight * 1.5;
    for (const SectionObject &picture : m_layout.pageHeaderPictures)
        m_headerHeight = std::max(m_headerHeight, picture.height + m_lineHeight / 2);
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
    const double captions = m_columns ? captionHeight() : 0;
    return m_bottom - m_content.top() - m_headerHeight - captions;
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

PageBuilder::Nesting PageBuilder::nest()
{
    Nesting outer{m_columns, std::move(m_openGroups)};
    m_openGroups.clear();
    return outer;
}

void PageBuilder::unnest(const Nesting &outer)
{
    m_openGroups = outer.openGroups;
    setColumns(outer.columns);
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
    // The captions go in before the first band of the chain that needs them, a heading's follower say.
    const bool captions =
        std::any_of(m_chain.begin(), m_chain.end(), [](const Band &band) { return band.needsCaptions; });
    if (m_columns && !m_captionsPlaced && captions)
        height += captionHeight();
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
        const double captions = band.needsCaptions && !m_captionsPlaced && m_columns ? captionHeight() : 0;
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
    if (m_headerHeight > 0) {
        Band header;
        header.height = m_headerHeight;
        if (!m_layout.pageHeader.isEmpty())
            header.texts.append(PageText{QRectF(m_content.left(), 0, m_content.width(), m_lineHeight),
                                         pageText(m_report.formulas().pageHeader()), font(),
                                         Qt::AlignLeft | Qt::AlignVCenter});
        for (const SectionObject &picture : m_layout.pageHeaderPictures)
            header.pictures +=
                Fitted(picture.image, PictureBox(picture, m_content.left(), m_content.width(), 0));
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
    CheckStop();
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
    for (PagePicture picture : band.pictures) {
        picture.box.translate(0, m_y);
        m_page.pictures.append(picture);
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
