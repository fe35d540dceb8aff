#pragma once
// The values a chart draws: the groups of its levels below one group (or the whole report), a formula
// over each.

#include "engine/SectionRules.h"
#include "engine/layout/ChartPainter.h"

namespace Engine {

class Report;
struct GroupNode;

ChartData GatherChart(const Report &report, const ChartRule &rule, const GroupNode &scope);

} // namespace Engine
