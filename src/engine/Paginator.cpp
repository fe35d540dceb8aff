#include "engine/Paginator.h"

#include "engine/GroupWalk.h"
#include "engine/Report.h"
#include "engine/Totals.h"
#include "engine/ValueFormat.h"

#include <QDate>

namespace Engine {

namespace {

struct Band
{
    double height = 0;
    QList<PageText> texts; // boxes relative to the band's top
    QList<PageLine> lines;
    bool newPage = false;
    bool needsCaptions = true;
};

// Where the columns of one report stand across the page.
struct ColumnSet
{
    QList<ColumnDefinition> columns;
    QList<int> fields;
    QList<double> left;
    QList<double> width;
};

ColumnSet LayColumns(const LayoutDefinition &layout, const RecordStore &records, double x, double available)
{
    ColumnSet set;
    set.columns = layout.columns;
    if (set.columns.isEmpty()) {
        for (const QString &name : records.fieldNames())
            set.columns.append(ColumnDefinition{name, name, 72, Qt::AlignLeft, QString()});
    }
    double total = 0;
    for (const ColumnDefinition &column : set.columns)
        total += column.width;
    // Columns wider than the page shrink in proportion, so nothing falls off its edge.
    const double scale = total > available && total > 0 ? available / total : 1.0;
    for (const ColumnDefinition &column : set.columns) {
        const double width = column.width * scale;
        // A column's text keeps clear of its right neighbour, so a right-aligned value never
        // runs into the next column's first character.
        const double gap = std::min(6.0, width / 4);
        set.fields.append(records.fieldIndex(column.field));
        set.left.append(x);
        set.width.append(width - gap);
        x += width;
    }
    return set;
}

class PageBuilder
{
public:
    PageBuilder(const PageSetup &setup, const LayoutDefinition &layout, PageSink *sink, int totalPages)
        : m_setup(setup), m_layout(layout), m_sink(sink), m_total(totalPages)
    {
        m_pageSize = setup.orientedSize();
        m_content = QRectF(QPointF(setup.margins.left(), setup.margins.top()),
                           QPointF(m_pageSize.width() - setup.margins.right(),
                                   m_pageSize.height() - setup.margins.bottom()));
        // Four thirds of the font size: 12 points at 9, the pitch of six text lines an inch.
        m_lineHeight = layout.fontSize * 4 / 3;
    }

    QRectF content() const { return m_content; }
    double lineHeight() const { return m_lineHeight; }
    PageFont font(bool bold = false, double grow = 0) const
    {
        PageFont font;
        font.pointSize = m_layout.fontSize + grow;
        font.bold = bold;
        return font;
    }

    void setColumns(const ColumnSet *columns)
    {
        m_columns = columns;
        m_captionsPlaced = false;
    }

    void place(const Band &band)
    {
        const double bottom = m_content.bottom() - m_lineHeight * 1.5;
        if (m_open && m_bodyUsed && (band.newPage || m_y + band.height + captionHeight(band) > bottom))
            endPage();
        if (!m_open)
            startPage();
        if (band.needsCaptions && !m_captionsPlaced && m_columns) {
            m_captionsPlaced = true;
            put(captionBand());
        }
        put(band);
        m_bodyUsed = true;
    }

    int finish()
    {
        if (!m_open)
            startPage();
        endPage();
        return m_number;
    }

private:
    double captionHeight(const Band &band) const
    {
        return band.needsCaptions && !m_captionsPlaced && m_columns ? m_lineHeight * 1.2 : 0;
    }

    Band captionBand() const
    {
        Band band;
        band.height = m_lineHeight * 1.2;
        for (int i = 0; i < m_columns->columns.size(); ++i)
            band.texts.append(PageText{QRectF(m_columns->left[i], 0, m_columns->width[i], m_lineHeight),
                                       m_columns->columns[i].caption, font(true),
                                       m_columns->columns[i].alignment | Qt::AlignVCenter});
        band.lines.append(
            PageLine{QPointF(m_content.left(), m_lineHeight), QPointF(m_content.right(), m_lineHeight), 0.5});
        return band;
    }

    void put(const Band &band)
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
        m_y += band.height;
    }

    QString substituted(QString text) const
    {
        text.replace(QLatin1String("{PageNumber}"), QString::number(m_number));
        text.replace(QLatin1String("{TotalPages}"), QString::number(m_total));
        text.replace(QLatin1String("{Title}"), m_setup.title);
        text.replace(QLatin1String("{PrintDate}"),
                     QDate::currentDate().toString(QStringLiteral("yyyy-MM-dd")));
        return text;
    }

    void startPage()
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
                                         substituted(m_layout.pageHeader), font(),
                                         Qt::AlignLeft | Qt::AlignVCenter});
            put(header);
        }
    }

    void endPage()
    {
        if (!m_layout.pageFooter.isEmpty())
            m_page.texts.append(PageText{
                QRectF(m_content.left(), m_content.bottom() - m_lineHeight, m_content.width(), m_lineHeight),
                substituted(m_layout.pageFooter), font(), Qt::AlignHCenter | Qt::AlignVCenter});
        if (m_sink)
            m_sink->addPage(m_page);
        m_open = false;
    }

    PageSetup m_setup;
    const LayoutDefinition &m_layout;
    PageSink *m_sink;
    int m_total;
    QSizeF m_pageSize;
    QRectF m_content;
    double m_lineHeight;
    const ColumnSet *m_columns = nullptr;
    Page m_page;
    int m_number = 0;
    double m_y = 0;
    bool m_open = false;
    bool m_bodyUsed = false;
    bool m_captionsPlaced = false;
};

// Turns the groups and records of one report into bands.
class ReportWalker : public GroupVisitor
{
public:
    ReportWalker(const Report &report, PageBuilder &builder)
        : m_report(report), m_layout(report.definition().layout), m_builder(builder),
          m_columns(
              LayColumns(m_layout, report.records(), builder.content().left(), builder.content().width()))
    {
    }

    // `gap`: a blank line first, which sets a sub-report apart from what stands above it.
    void walk(const QString &heading, bool gap)
    {
        m_builder.setColumns(&m_columns);
        if (gap) {
            Band blank;
            blank.height = m_builder.lineHeight();
            blank.needsCaptions = false;
            m_builder.place(blank);
        }
        if (!heading.isEmpty())
            m_builder.place(textBand(heading, true, 5, false));
        WalkGroups(m_report, *this);
    }

    void groupHeader(int level, const QVariant &value, bool first) override
    {
        const GroupDefinition &group = m_layout.groups[level];
        Band header = textBand(QString(group.caption).replace(QLatin1String("{value}"), PlainText(value)),
                               true, 1, true);
        header.newPage = group.newPage && !first;
        m_builder.place(header);
    }

    void detail(const RecordStore::Row &row) override { m_builder.place(detailBand(row)); }

    void groupFooter(int, const QVariant &value, const Totals &totals) override
    {
        m_builder.place(totalsBand(QStringLiteral("Total ") + PlainText(value), totals));
    }

    void grandTotal(const Totals &totals) override
    {
        m_builder.place(totalsBand(QStringLiteral("Grand total"), totals));
    }

private:
    Band textBand(const QString &text, bool bold, double grow, bool needsCaptions) const
    {
        Band band;
        const double height = m_builder.lineHeight() * (1 + grow / 10);
        band.height = height * 1.2;
        band.needsCaptions = needsCaptions;
        band.texts.append(PageText{QRectF(m_builder.content().left(), 0, m_builder.content().width(), height),
                                   text, m_builder.font(bold, grow), Qt::AlignLeft | Qt::AlignVCenter});
        return band;
    }

    Band detailBand(const RecordStore::Row &row) const
    {
        Band band;
        band.height = m_builder.lineHeight();
        for (int i = 0; i < m_columns.columns.size(); ++i) {
            const int field = m_columns.fields[i];
            const QString text = field < 0 ? QString() : FormatValue(row[field], m_columns.columns[i].format);
            band.texts.append(PageText{QRectF(m_columns.left[i], 0, m_columns.width[i], band.height), text,
                                       m_builder.font(), m_columns.columns[i].alignment | Qt::AlignVCenter});
        }
        return band;
    }

    Band totalsBand(const QString &label, const Totals &totals) const
    {
        Band band;
        band.height = m_builder.lineHeight() * 1.3;
        band.lines.append(
            PageLine{QPointF(m_builder.content().left(), 0), QPointF(m_builder.content().right(), 0), 0.5});
        band.texts.append(
            PageText{QRectF(m_builder.content().left(), 0, m_builder.content().width(), band.height), label,
                     m_builder.font(true), Qt::AlignLeft | Qt::AlignVCenter});
        for (int t = 0; t < totals.size(); ++t) {
            const int column = int(m_columns.fields.indexOf(totals.fieldIndex(t)));
            if (column < 0)
                continue;
            const QString pattern = totals.summary(t).function == QLatin1String("count")
                                        ? QString()
                                        : m_columns.columns[column].format;
            band.texts.append(
                PageText{QRectF(m_columns.left[column], 0, m_columns.width[column], band.height),
                         FormatValue(totals.value(t), pattern), m_builder.font(true),
                         m_columns.columns[column].alignment | Qt::AlignVCenter});
        }
        return band;
    }

    const Report &m_report;
    const LayoutDefinition &m_layout;
    PageBuilder &m_builder;
    ColumnSet m_columns;
};

void WalkSubreports(const Report &report, PageBuilder &builder)
{
    for (const Section &section : report.Sections()) {
        for (ReportObject &object : section.ReportObjects()) {
            if (object.Kind() != SubreportObjectKind)
                continue;
            Report &subreport = static_cast<SubreportObject &>(object).OpenSubreport();
            if (!subreport.hasRecords())
                continue;
            const QString heading =
                subreport.ReportTitle().isEmpty() ? object.Name() : subreport.ReportTitle();
            ReportWalker(subreport, builder).walk(heading, true);
        }
    }
}

} // namespace

Paginator::Paginator(const Report &report) : m_report(report) {}

int Paginator::countPages()
{
    return run(nullptr, 0);
}

void Paginator::render(PageSink &sink)
{
    const int total = countPages();
    sink.begin(m_report.pageSetup(), total);
    run(&sink, total);
    sink.end();
}

int Paginator::run(PageSink *sink, int totalPages)
{
    PageBuilder builder(m_report.pageSetup(), m_report.definition().layout, sink, totalPages);
    ReportWalker(m_report, builder).walk(m_report.ReportTitle(), false);
    WalkSubreports(m_report, builder);
    return builder.finish();
}

} // namespace Engine
