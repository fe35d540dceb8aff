#include "engine/layout/Crosstab.h"

#include "engine/Report.h"
#include "engine/ReportContext.h"
#include "engine/ValueFormat.h"
#include "engine/layout/TextFit.h"
#include "engine/page/PageFonts.h"

namespace Engine {

namespace {

// The place of `value` in `values`, which are kept in order; `added` when it was not there yet.
int Place(QList<QVariant> &values, const QVariant &value, bool &added)
{
    const auto at =
        std::lower_bound(values.begin(), values.end(), value,
                         [](const QVariant &a, const QVariant &b) { return CompareValues(a, b) < 0; });
    added = at == values.end() || CompareValues(*at, value) != 0;
    const int index = int(at - values.begin());
    if (added)
        values.insert(index, value);
    return index;
}

} // namespace

CrosstabTable GatherCrosstab(const Report &report, const CrosstabRule &rule, const GroupNode &scope)
{
    ReportContext context(report.formulas(), report.ReportTitle());
    const bool distinct = rule.function == SummaryFunction::DistinctCount;
    CrosstabTable table;
    const QList<int> &order = report.groups().order();
    for (int position = scope.first; position < scope.end; ++position) {
        context.setRecord(report.records().row(order[position]), position, &scope);
        bool added = false;
        const int row = Place(table.rows, context.valueOf(rule.rows), added);
        if (added) {
            table.cells.insert(table.cells.begin() + row, std::vector<Accumulator>(table.columns.size()));
            table.rowTotals.insert(table.rowTotals.begin() + row, Accumulator());
        }
        const int column = Place(table.columns, context.valueOf(rule.columns), added);
        if (added) {
            for (std::vector<Accumulator> &cells : table.cells)
                cells.insert(cells.begin() + column, Accumulator());
            table.columnTotals.insert(table.columnTotals.begin() + column, Accumulator());
        }
        const QVariant value = context.valueOf(rule.field);
        for (Accumulator *accumulator :
             {&table.cells[size_t(row)][size_t(column)], &table.rowTotals[size_t(row)],
              &table.columnTotals[size_t(column)], &table.total})
            accumulator->add(value, distinct);
    }
    return table;
}

namespace {

class CrosstabLayout
{
public:
    CrosstabLayout(const CrosstabTable &table, const CrosstabRule &rule, const CrosstabDefinition &definition,
                   const CrosstabLook &look)
        : m_table(table), m_rule(rule), m_definition(definition), m_look(look)
    {
        double widest = 0;
        for (const QVariant &row : table.rows)
            widest = std::max(widest, MetricsOf(look.font).horizontalAdvance(PlainText(row)));
        m_labelWidth = std::min(widest + 8, look.content.width() / 3);
        const double cell = std::min(definition.cellWidth, look.content.width() - m_labelWidth);
        m_perChunk = std::max(1, int((look.content.width() - m_labelWidth) / cell));
        m_cellWidth = cell;
    }

    std::vector<Band> bands() const;

private:
    Band row(const QString &label, const std::function<const Accumulator *(qsizetype column)> &cell,
             qsizetype from, qsizetype to, bool bold) const;
    QString text(const Accumulator &accumulator) const;

    const CrosstabTable &m_table;
    const CrosstabRule &m_rule;
    const CrosstabDefinition &m_definition;
    const CrosstabLook &m_look;
    double m_labelWidth = 0;
    double m_cellWidth = 0;
    int m_perChunk = 1;
};

QString CrosstabLayout::text(const Accumulator &accumulator) const
{
    return SummaryText(m_rule.function, accumulator.value(m_rule.function), m_definition.format);
}

// A line of the table for the columns [from, to); the column after the last value's is the row total.
Band CrosstabLayout::row(const QString &label, const std::function<const Accumulator *(qsizetype)> &cell,
                         qsizetype from, qsizetype to, bool bold) const
{
    Band band;
    band.needsCaptions = false;
    band.height = m_look.lineHeight;
    const PageFont &font = bold ? m_look.bold : m_look.font;
    const double left = m_look.content.left();
    band.texts.append(PageText{QRectF(left, 0, m_labelWidth - 6, m_look.lineHeight),
                               Elided(label, font, m_labelWidth - 6), font,
                               Qt::AlignLeft | Qt::AlignVCenter});
    for (qsizetype column = from; column < to; ++column) {
        const Accumulator *value = cell(column);
        const double x = left + m_labelWidth + double(column - from) * m_cellWidth;
        const QString shown = value ? text(*value) : QString();
        band.texts.append(PageText{QRectF(x, 0, m_cellWidth - 6, m_look.lineHeight),
                                   Elided(shown, font, m_cellWidth - 6), font,
                                   Qt::AlignRight | Qt::AlignVCenter});
    }
    return band;
}

std::vector<Band> CrosstabLayout::bands() const
{
    std::vector<Band> bands;
    const qsizetype columns = m_table.columns.size() + 1; // the values', then the totals'
    for (qsizetype from = 0; from < columns; from += m_perChunk) {
        const qsizetype to = std::min(columns, from + m_perChunk);
        const double right = m_look.content.left() + m_labelWidth + double(to - from) * m_cellWidth;
        // The captions of the columns, in bold, are text in a row of their own.
        Band captions;
        captions.needsCaptions = false;
        captions.newPage = from > 0;
        captions.keepWithNext = true;
        captions.height = m_look.lineHeight * 1.2;
        for (qsizetype column = from; column < to; ++column) {
            const QString caption = column < m_table.columns.size() ? PlainText(m_table.columns[column])
                                                                    : QStringLiteral("Total");
            const double x = m_look.content.left() + m_labelWidth + double(column - from) * m_cellWidth;
            captions.texts.append(PageText{QRectF(x, 0, m_cellWidth - 6, m_look.lineHeight),
                                           Elided(caption, m_look.bold, m_cellWidth - 6), m_look.bold,
                                           Qt::AlignRight | Qt::AlignVCenter});
        }
        captions.lines.append(PageLine{QPointF(m_look.content.left(), m_look.lineHeight * 1.1),
                                       QPointF(right, m_look.lineHeight * 1.1), 0.5});
        bands.push_back(captions);
        for (qsizetype r = 0; r < m_table.rows.size(); ++r) {
            bands.push_back(row(
                PlainText(m_table.rows[r]),
                [&](qsizetype column) {
                    return column < m_table.columns.size() ? &m_table.cells[size_t(r)][size_t(column)]
                                                           : &m_table.rowTotals[size_t(r)];
                },
                from, to, false));
        }
        Band totals = row(
            QStringLiteral("Total"),
            [&](qsizetype column) {
                return column < m_table.columns.size() ? &m_table.columnTotals[size_t(column)]
                                                       : &m_table.total;
            },
            from, to, true);
        totals.lines.append(PageLine{QPointF(m_look.content.left(), 0), QPointF(right, 0), 0.5});
        totals.height = m_look.lineHeight * 1.5;
        bands.push_back(totals);
    }
    return bands;
}

} // namespace

std::vector<Band> CrosstabBands(const CrosstabTable &table, const CrosstabRule &rule,
                                const CrosstabDefinition &definition, const CrosstabLook &look)
{
    return CrosstabLayout(table, rule, definition, look).bands();
}

} // namespace Engine
