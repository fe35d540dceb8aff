#include "engine/layout/ColumnSet.h"

#include "engine/layout/TextFit.h"

namespace Engine {

ColumnSet::ColumnSet(const LayoutDefinition &layout, const ReportFormulas &formulas,
                     const RecordStore &records, double x, double available)
    : columns(layout.columns)
{
    if (columns.isEmpty()) {
        for (const QString &name : records.fieldNames()) {
            ColumnDefinition column;
            column.field = name;
            column.caption = name;
            columns.append(column);
        }
    }
    double total = 0;
    for (const ColumnDefinition &column : columns)
        total += column.width;
    const double scale = total > available && total > 0 ? available / total : 1.0;
    for (const ColumnDefinition &column : columns) {
        const double full = column.width * scale;
        // A column's text keeps clear of its right neighbour, so a right-aligned value never
        // runs into the next column's first character.
        const double gap = std::min(6.0, full / 4);
        sources.append(formulas.resolve(column.field).value_or(NameRef{NameRef::RecordField, -1}));
        left.append(x);
        width.append(full - gap);
        x += full;
    }
}

int ColumnSet::columnOf(const NameRef &source) const
{
    for (int i = 0; i < size(); ++i) {
        if (sources[i].kind == source.kind && sources[i].index == source.index)
            return i;
    }
    return -1;
}

Band ColumnSet::captionBand(const PageFont &font, double lineHeight, const QRectF &content) const
{
    Band band;
    band.height = lineHeight * 1.2;
    for (int i = 0; i < size(); ++i)
        band.texts.append(PageText{QRectF(left[i], 0, width[i], lineHeight),
                                   Elided(columns[i].caption, font, width[i]), font,
                                   columns[i].alignment | Qt::AlignVCenter});
    band.lines.append(
        PageLine{QPointF(content.left(), lineHeight), QPointF(content.right(), lineHeight), 0.5});
    return band;
}

} // namespace Engine
