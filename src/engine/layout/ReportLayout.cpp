#include "engine/layout/ReportLayout.h"

#include "engine/Report.h"
#include "engine/ValueFormat.h"
#include "engine/layout/TextFit.h"

namespace Engine {

namespace {

const QString Continued = QStringLiteral(" (continued)");

// A count or a share is no amount of the column's kind: only the other summaries take its pattern.
QString SubtotalText(SummaryFunction function, const QVariant &value, const QString &columnFormat)
{
    switch (function) {
    case SummaryFunction::Count:
    case SummaryFunction::DistinctCount: return PlainText(value);
    case SummaryFunction::PercentOfSum:
        return value.isNull() ? QString() : FormatValue(value, QStringLiteral("0.0")) + QLatin1Char('%');
    default: return FormatValue(value, columnFormat);
    }
}

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
    if (gap) {
        Band blank;
        blank.height = m_builder.lineHeight();
        blank.needsCaptions = false;
        emit(blank);
    }
    if (!heading.isEmpty())
        emit(textBand(heading, true, 5, false));
    WalkGroups(m_report, *this);
    // Every band of this report is placed by now; the captions of its columns go with it.
    m_builder.setColumns(nullptr);
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
    const QString caption = m_formulas.group(group.level).caption.evaluate(m_context, group.value);
    Band header = textBand(caption, true, 1, true);
    auto continued = std::make_shared<Band>(textBand(caption + Continued, true, 1, true));
    header.newPage = definition.newPage && !first;
    header.keepWithNext = true; // never a header alone at the foot of a page
    header.opensGroup = group.level;
    header.continued = std::move(continued);
    header.anchor = caption;
    if (definition.keepTogether && !m_measured)
        header.keepTogether = groupHeight(group);
    emit(header);
}

void ReportLayout::detail(const RecordStore::Row &row, const GroupNode &group, int position)
{
    m_context.setRecord(row, position, &group);
    m_context.setPage(m_builder.pageNumber(), m_builder.totalPages());
    m_running.add(m_context);
    Band band = detailBand();
    band.keepWithNext = position == group.end - 1 && footerFollows(&group);
    emit(band);
}

void ReportLayout::groupFooter(const GroupNode &group)
{
    Band footer;
    if (!m_formulas.subtotals(group.level).empty()) {
        enterGroup(group);
        footer =
            totalsBand(m_formulas.group(group.level).footer.evaluate(m_context, group.value), group.level);
    }
    footer.closesGroup = group.level;
    footer.keepWithNext = group.isLastChild() && footerFollows(group.parent);
    emit(footer);
}

void ReportLayout::grandTotal(const GroupNode &root)
{
    if (m_formulas.subtotals(-1).empty())
        return;
    enterGroup(root);
    emit(totalsBand(QStringLiteral("Grand total"), -1));
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
        if (!m_formulas.subtotals(node->level).empty())
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
    int lines = 1;
    for (int i = 0; i < m_columns.size(); ++i) {
        const ColumnDefinition &column = m_columns.columns[i];
        const QString text = FormatValue(m_context.valueOf(m_columns.sources[i]), column.format);
        const double width = m_columns.width[i];
        const QStringList parts =
            column.wrap ? Wrapped(text, font, width) : QStringList{Elided(text, font, width)};
        for (int line = 0; line < parts.size(); ++line)
            band.texts.append(PageText{QRectF(m_columns.left[i], line * lineHeight, width, lineHeight),
                                       parts[line], font, column.alignment | Qt::AlignVCenter});
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
            SubtotalText(subtotal.function, m_context.summary(subtotal.ref), definition.format);
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
