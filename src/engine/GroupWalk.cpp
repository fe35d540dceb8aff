#include "engine/GroupWalk.h"

#include "engine/Report.h"
#include "engine/StopCheck.h"

namespace Engine {

namespace {

void WalkDetails(const Report &report, const GroupNode &group, GroupVisitor &visitor)
{
    const RecordStore &records = report.records();
    const QList<int> &order = report.groups().order();
    for (int position = group.first; position < group.end; ++position) {
        CheckStop();
        visitor.detail(records.row(order[position]), group, position);
    }
}

void WalkChildren(const Report &report, const GroupNode &group, GroupVisitor &visitor, bool first)
{
    if (group.children.empty())
        return WalkDetails(report, group, visitor);
    for (const GroupNode &child : group.children) {
        WalkGroup(report, child, visitor, first);
        first = false;
    }
}

} // namespace

void WalkGroup(const Report &report, const GroupNode &group, GroupVisitor &visitor, bool first)
{
    visitor.groupHeader(group, first);
    WalkChildren(report, group, visitor, first);
    visitor.groupFooter(group);
}

void WalkGroups(const Report &report, GroupVisitor &visitor)
{
    const GroupNode &root = report.groups().root();
    WalkChildren(report, root, visitor, true);
    visitor.grandTotal(root);
}

} // namespace Engine
