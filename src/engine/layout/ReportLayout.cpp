#include "engine/layout/ReportLayout.h"

#include "engine/Report.h"
#include "engine/ValueFormat.h"
#include "engine/layout/ChartGathering.h"
#include "engine/layout/Crosstab.h"
#include "engine/layout/Pictures.h"
#include "engine/layout/TextFit.h"

namespace Engine {

namespace {

const QString Continued = QStringLiteral(" (continued)");

} // namespace

ReportLayout::ReportLayout(const Report &report, PageBuilder &builder)
    : m_report(report), m_layout(report.definition().layout), m_formulas(report.formulas()),
      m_builder(builder),
      m_columns(m_layout, m_formulas, report.records(), builder.content().left(), builder.content().width()),
      m_wraps(std::any_of(m_columns.columns.begin(), m_columns.columns.end(),
                          [](const ColumnDefinition &column) { return column.wrap; })),
      m_context(m_formulas, report.ReportTitle()), m_running(m_formulas)
{
    m_context.setRunningTotals(&m_running.values());
}

void ReportLayout::walk(const QString &heading, bool gap)
{
    m_builder.setColumns(&m_columns);
    walkBands(heading, gap);
    // Every band of this report is placed by now; the captions of its columns go with it.
    m_builder.setColumns(nullptr);
}

double ReportLayout::measure(const QString &heading)
{
    double height = 0;
    m_measured = &height;
    walkBands(heading, true);
    m_measured = nullptr;
    return height;
}

void ReportLayout::walkBands(const QString &heading, bool gap)
{
    if (gap) {
        Band blank;
        blank.height = m_builder.lineHeight();
        blank.needsCaptions = false;
        emit(blank);
    }
    if (!heading.isEmpty()) {
        Band title = textBand(heading, true, 5, false);
        title.keepWithNext = true; // never a title alone at the foot of a page
        emit(title);
    }
    const GroupNode &root = m_report.groups().root();
    enterGroup(root);
    emitSection(m_formulas.reportHeader(), m_layout.reportHeader);
    placeSubreports(QStringLiteral("ReportHeader"), root);
    if (root.rowCount() == 0)
        emitSection(m_formulas.noData(), m_layout.noData);
    WalkGroups(m_report, *this);
}

void ReportLayout::emit(const Band &band)
{
    if (m_measured)
        *m_measured += band.height;
    else
        m_builder.place(band);
}

// The group's header and footer read the fields of its first record.
void ReportLayout::enterGroup(const GroupNode &group)
{
    const QList<int> &order = m_report.groups().order();
    m_context.setGroup(group, group.rowCount() > 0 ? m_report.records().row(order[group.first])
                                                   : RecordStore::Row());
    m_context.setPage(m_builder.pageNumber(), m_builder.totalPages());
}

void ReportLayout::groupHeader(const GroupNode &group, bool first)
{
    const GroupDefinition &definition = m_layout.groups[group.level];
    m_running.startGroup(group.level);
    enterGroup(group);
    const GroupRule &rule = m_formulas.group(group.level);
    const QString caption = rule.caption.evaluate(m_context, group.value);
    Band header;
    if (!rule.header.conditions.hides(m_context)) {
        header = textBand(caption, true, 1, true);
        rule.header.conditions.style(m_context, header.texts.front());
        auto continued = std::make_shared<Band>(header);
        continued->texts.front().text =
            Elided(caption + Continued, continued->texts.front().font, continued->texts.front().box.width());
        appendSection(header, rule.header, definition.header, group);
        header.continued = std::move(continued);
    }
    header.newPage = definition.newPage && !first;
    header.keepWithNext = true; // never a header alone at the foot of a page
    header.opensGroup = group.level;
    header.anchor = caption;
    if (definition.keepTogether && !m_measured)
        header.keepTogether = groupHeight(group);
    emit(header);
    emitFollowing();
    placeSubreports(QStringLiteral("GroupHeader%1").arg(group.level + 1), group);
}

void ReportLayout::detail(const RecordStore::Row &row, const GroupNode &group, int position)
{
    m_context.setRecord(row, position, &group);
    m_context.setPage(m_builder.pageNumber(), m_builder.totalPages());
    m_running.add(m_context);
    if (m_formulas.details().conditions.hides(m_context))
        return;
    Band band = detailBand();
    appendSection(band, m_formulas.details(), m_layout.details, group);
    band.keepWithNext = position == group.end - 1 && footerFollows(&group);
    emit(band);
}

void ReportLayout::groupFooter(const GroupNode &group)
{
    Band footer;
    if (hasFooter(group.level)) {
        enterGroup(group);
        const GroupRule &rule = m_formulas.group(group.level);
        if (!rule.footerSection.conditions.hides(m_context)) {
            if (!m_formulas.subtotals(group.level).empty())
                footer = totalsBand(rule.footer.evaluate(m_context, group.value), group.level);
            for (PageText &text : footer.texts)
                rule.footerSection.conditions.style(m_context, text);
            appendSection(footer, rule.footerSection, m_layout.groups[group.level].footerSection, group);
        }
    }
    footer.closesGroup = group.level;
    footer.keepWithNext = group.isLastChild() && footerFollows(group.parent);
    emit(footer);
    emitFollowing();
    placeSubreports(QStringLiteral("GroupFooter%1").arg(group.level + 1), group);
}

void ReportLayout::grandTotal(const GroupNode &root)
{
    enterGroup(root);
    if (!m_formulas.subtotals(-1).empty())
        emit(totalsBand(QStringLiteral("Grand total"), -1));
    emitSection(m_formulas.reportFooter(), m_layout.reportFooter);
    placeSubreports(QStringLiteral("ReportFooter"), root);
}

// Each sub-report of a section laid out in place under its title; one in a group's section reads its
// records for that group first. While a group is measured, the sub-reports count with their captions
// and the main report's captions after them.
void ReportLayout::placeSubreports(const QString &section, const GroupNode &node)
{
    for (SubreportObject *object : m_report.subreportsIn(section)) {
        if (node.level >= 0) {
            enterGroup(node);
            m_report.readSubreport(*object, [this](const QString &field) {
                const std::optional<NameRef> ref = m_formulas.resolve(field);
                return ref ? m_context.valueOf(*ref) : QVariant();
            });
        }
        const Report &subreport = object->OpenSubreport();
        if (!subreport.hasRecords())
            continue;
        const QString heading = object->Heading();
        ReportLayout inner(subreport, m_builder);
        if (m_measured) {
            *m_measured += inner.measure(heading) + 2 * m_builder.captionHeight();
            continue;
        }
        const PageBuilder::Nesting outer = m_builder.nest();
        inner.walk(heading, true);
        m_builder.unnest(outer);
    }
}

// The texts and pictures of a section below what `band` holds, unless its condition hides them; the
// bands of its cross-tabs wait in m_following for the band to be placed.
void ReportLayout::appendSection(Band &band, const SectionRules &rules, const SectionDefinition &section,
                                 const GroupNode &node)
{
    const QVariant value = node.level >= 0 ? node.value : QVariant();
    if (rules.conditions.hides(m_context))
        return;
    const double base = m_layout.fontSize;
    const QRectF content = m_builder.content();
    for (size_t i = 0; i < rules.texts.size(); ++i) {
        const SectionObject &object = section.objects[qsizetype(i)];
        if (object.kind == SectionObject::Crosstab) {
            const CrosstabLook look{content, m_builder.font(), m_builder.font(true), m_builder.lineHeight()};
            const CrosstabTable table = GatherCrosstab(m_report, rules.crosstabs[i], node);
            for (Band &line : CrosstabBands(table, rules.crosstabs[i], object.crosstab, look))
                m_following.push_back(std::move(line));
            continue;
        }
        if (object.kind != SectionObject::Text) {
            const QRectF box = PictureBox(object, content.left(), content.width(), band.height);
            if (!m_builder.measuring())
                band.pictures += Fitted(picture(rules, i, object, node, box.size()), box);
            band.height += object.height + m_builder.lineHeight() / 2;
            continue;
        }
        const double grow = object.fontSize > 0 ? object.fontSize - base : 0;
        Band text = textBand(rules.texts[i].evaluate(m_context, value), object.bold, grow, false);
        PageText &placed = text.texts.front();
        placed.alignment = object.alignment | Qt::AlignVCenter;
        placed.box.translate(0, band.height);
        rules.conditions.style(m_context, placed);
        band.texts.append(placed);
        band.height += text.height;
    }
}

// A picture object's image: from its file, the record's field, or a chart drawn to the box's size.
QImage ReportLayout::picture(const SectionRules &rules, size_t index, const SectionObject &object,
                             const GroupNode &node, const QSizeF &size) const
{
    if (object.kind == SectionObject::Chart) {
        ChartData data = GatherChart(m_report, rules.charts[index], node);
        data.title = rules.texts[index].evaluate(m_context, node.level >= 0 ? node.value : QVariant());
        return PaintChart(data, object.chart.type, size);
    }
    return rules.fields[index] ? PictureOf(m_context.valueOf(*rules.fields[index])) : object.image;
}

void ReportLayout::emitSection(const SectionRules &rules, const SectionDefinition &section)
{
    Band band;
    band.needsCaptions = false;
    appendSection(band, rules, section, m_report.groups().root());
    if (band.height > 0)
        emit(band);
    emitFollowing();
}

// The bands a section's cross-tabs left to follow it.
void ReportLayout::emitFollowing()
{
    std::vector<Band> following;
    following.swap(m_following);
    for (const Band &band : following)
        emit(band);
}

// A group's footer has content: totals or texts.
bool ReportLayout::hasFooter(int level) const
{
    return !m_formulas.subtotals(level).empty() ||
           (level >= 0 && !m_formulas.group(level).footerSection.texts.empty()) ||
           (level < 0 && !m_formulas.reportFooter().texts.empty());
}

// The height of a whole group, when a page can hold it at all; the running totals are as before.
double ReportLayout::groupHeight(const GroupNode &group)
{
    const double available = m_builder.bodyHeight();
    if (group.rowCount() * m_builder.lineHeight() > available)
        return 0;
    const RunningTotals running = m_running;
    double height = 0;
    m_measured = &height;
    WalkGroup(m_report, group, *this);
    m_measured = nullptr;
    m_running = running;
    return height <= available ? height : 0;
}

// Whether a footer with content follows once `group` has ended: its own, or that of an enclosing
// group (or the grand total) that ends with it.
bool ReportLayout::footerFollows(const GroupNode *group) const
{
    for (const GroupNode *node = group; node; node = node->isLastChild() ? node->parent : nullptr) {
        if (hasFooter(node->level))
            return true;
    }
    return false;
}

Band ReportLayout::textBand(const QString &text, bool bold, double grow, bool needsCaptions) const
{
    Band band;
    const double height = m_builder.lineHeight() * (1 + grow / 10);
    const QRectF content = m_builder.content();
    const PageFont font = m_builder.font(bold, grow);
    band.height = height * 1.2;
    band.needsCaptions = needsCaptions;
    band.texts.append(PageText{QRectF(content.left(), 0, content.width(), height),
                               Elided(text, font, content.width()), font, Qt::AlignLeft | Qt::AlignVCenter});
    return band;
}

Band ReportLayout::detailBand() const
{
    Band band;
    const double lineHeight = m_builder.lineHeight();
    if (m_builder.measuring() && !m_wraps) {
        band.height = lineHeight;
        return band;
    }
    const PageFont font = m_builder.font();
    const Conditions &record = m_formulas.details().conditions;
    int lines = 1;
    for (int i = 0; i < m_columns.size(); ++i) {
        const ColumnDefinition &column = m_columns.columns[i];
        const Conditions &field = m_formulas.column(i);
        const QString text = field.hides(m_context)
                                 ? QString()
                                 : FormatValue(m_context.valueOf(m_columns.sources[i]), column.format);
        PageText look{QRectF(), QString(), font, column.alignment | Qt::AlignVCenter};
        record.style(m_context, look);
        field.style(m_context, look);
        const double width = m_columns.width[i];
        const QStringList parts =
            column.wrap ? Wrapped(text, look.font, width) : QStringList{Elided(text, look.font, width)};
        for (int line = 0; line < parts.size(); ++line) {
            look.box = QRectF(m_columns.left[i], line * lineHeight, width, lineHeight);
            look.text = parts[line];
            band.texts.append(look);
        }
        lines = std::max(lines, int(parts.size()));
    }
    band.height = lines * lineHeight;
    return band;
}

// The label stands left of the first total; when that total is in the first column, the label takes
// a line of its own above the totals, so that neither covers the other.
Band ReportLayout::totalsBand(const QString &label, int level) const
{
    Band band;
    const double lineHeight = m_builder.lineHeight() * 1.3;
    const QRectF content = m_builder.content();
    const PageFont font = m_builder.font(true);
    double labelEnd = content.right();
    QList<PageText> values;
    for (const Subtotal &subtotal : m_formulas.subtotals(level)) {
        const int column = m_columns.columnOf(subtotal.operand);
        if (column < 0)
            continue;
        const ColumnDefinition &definition = m_columns.columns[column];
        const QString text =
            SummaryText(subtotal.function, m_context.summary(subtotal.ref), definition.format);
        const double width = m_columns.width[column];
        values.append(PageText{QRectF(m_columns.left[column], 0, width, lineHeight),
                               Elided(text, font, width), font, definition.alignment | Qt::AlignVCenter});
        labelEnd = std::min(labelEnd, m_columns.left[column] - std::min(6.0, m_columns.width[column] / 4));
    }
    const bool ownLine = labelEnd - content.left() < m_builder.lineHeight();
    const double labelWidth = ownLine ? content.width() : labelEnd - content.left();
    band.texts.append(PageText{QRectF(content.left(), 0, labelWidth, lineHeight),
                               Elided(label, font, labelWidth), font, Qt::AlignLeft | Qt::AlignVCenter});
    const double valuesTop = ownLine ? lineHeight : 0;
    for (PageText &value : values) {
        value.box.translate(0, valuesTop);
        band.texts.append(value);
    }
    band.height = valuesTop + lineHeight;
    band.lines.append(PageLine{QPointF(content.left(), 0), QPointF(content.right(), 0), 0.5});
    return band;
}

} // namespace Engine
