#pragma once
// Each record of a report in print order, with its group, formula fields and running totals at hand:
// for the exports that write records rather than pages.

#include "engine/ReportContext.h"

#include <functional>

namespace Engine {

class Report;

void ForEachRecord(const Report &report, const std::function<void(const ReportContext &)> &visit);

} // namespace Engine
