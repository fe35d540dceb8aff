#pragma once
// Where the columns of one report stand across the page.

#include "engine/ReportFormulas.h"
#include "engine/layout/Band.h"

namespace Engine {

struct ColumnSet
{
    // `left` and `available`: the content area across the page; columns wider than it together shrink
    // in proportion, so nothing falls off its edge.
    ColumnSet(const LayoutDefinition &layout, const ReportFormulas &formulas, const RecordStore &records,
              double left, double available);

    int size() const { return int(columns.size()); }
    // The column that shows a field or formula field, -1 when none does.
    int columnOf(const NameRef &source) const;
    // The captions in bold under which a line runs across the content area.
    Band captionBand(const PageFont &font, double lineHeight, const QRectF &content) const;

    QList<ColumnDefinition> columns;
    QList<NameRef> sources; // what each column shows
    QList<double> left;
    QList<double> width; // the text's width: the column less a gap before the next one
};

} // namespace Engine
