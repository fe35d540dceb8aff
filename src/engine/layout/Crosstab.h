#pragma once
// A cross-tab: one summary for each pair of values of two fields over the records below a group (or the
// whole report), with row and column totals, laid out as bands; columns that do not fit across the
// page go on to further pages, each with the row labels again.

#include "engine/SectionRules.h"
#include "engine/layout/Band.h"

namespace Engine {

class Report;
struct GroupNode;

struct CrosstabTable
{
    QList<QVariant> rows; // in order of value
    QList<QVariant> columns;
    std::vector<std::vector<Accumulator>> cells; // by row, then column
    std::vector<Accumulator> rowTotals;
    std::vector<Accumulator> columnTotals;
    Accumulator total;
};

CrosstabTable GatherCrosstab(const Report &report, const CrosstabRule &rule, const GroupNode &scope);

// The look of a cross-tab's bands: the page's content area, fonts and line height.
struct CrosstabLook
{
    QRectF content;
    PageFont font;
    PageFont bold;
    double lineHeight = 12;
};

std::vector<Band> CrosstabBands(const CrosstabTable &table, const CrosstabRule &rule,
                                const CrosstabDefinition &definition, const CrosstabLook &look);

} // namespace Engine
