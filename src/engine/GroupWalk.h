#pragma once
// Walks a report's groups in print order (headers, details, footers, grand totals) for a visitor.

#include "engine/GroupTree.h"

namespace Engine {

class Report;

class GroupVisitor
{
public:
    virtual ~GroupVisitor() = default;
    // `first`: the first header of the report, which never starts a new page.
    virtual void groupHeader(const GroupNode &group, bool first) = 0;
    // `group`: the innermost group of the record (the root without groups); `position` in print order.
    virtual void detail(const RecordStore::Row &row, const GroupNode &group, int position) = 0;
    // Every group ends with its footer, whether it has subtotals or not.
    virtual void groupFooter(const GroupNode &group) = 0;
    // After the last group, whether the layout has grand totals or not.
    virtual void grandTotal(const GroupNode &root) = 0;
};

// The whole report.
void WalkGroups(const Report &report, GroupVisitor &visitor);
// One group with its subgroups and records, from its header to its footer.
void WalkGroup(const Report &report, const GroupNode &group, GroupVisitor &visitor, bool first = false);

} // namespace Engine
