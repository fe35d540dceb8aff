#pragma once
// Walks a report's chosen records through its groups (headers, details, subtotals, grand totals) for a
// visitor.

#include "engine/RecordStore.h"
#include "engine/Totals.h"

namespace Engine {

class Report;

class GroupVisitor
{
public:
    virtual ~GroupVisitor() = default;
    // `first`: the first header of the report, which never starts a new page.
    virtual void groupHeader(int level, const QVariant &value, bool first) = 0;
    virtual void detail(const RecordStore::Row &row) = 0;
    // Only for groups that have subtotals.
    virtual void groupFooter(int level, const QVariant &value, const Totals &totals) = 0;
    // Only when the layout has grand totals.
    virtual void grandTotal(const Totals &totals) = 0;
};

void WalkGroups(const Report &report, GroupVisitor &visitor);

} // namespace Engine
