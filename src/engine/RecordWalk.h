#pragma once
// Each record of a report in print order, with its group, formula fields and running totals at hand:
// for the exports that write records rather than pages.

#include "engine/ReportContext.h"

#include <functional>

namespace Engine {

class Report;

void ForEachRecord(const Report &report, const std::function<void(const ReportContext &)> &visit);
class SubreportObject;
// Each sub-report of the report with its records read, in the order of the sections, those of a group's
// header or footer once for each group (`group`: its value as text), linked to the group's fields.
void ForEachSubreport(const Report &report,
                      const std::function<void(SubreportObject &object, const QString &group)> &visit);
// Each group of a level in print order, the context at the group with its first record.
void ForEachGroup(const Report &report, int level, const std::function<void(const ReportContext &)> &visit);

} // namespace Engine
