#pragma once
// The chosen records of a report in print order, cut into nested groups, each group with its totals.

#include "engine/RecordStore.h"
#include "engine/ReportDefinition.h"
#include "engine/Totals.h"

#include <vector>

namespace Engine {

struct GroupNode
{
    GroupNode(int depth, const QList<SummaryDefinition> &summaries, const RecordStore &records)
        : level(depth), totals(summaries, records)
    {
    }

    int level = -1; // -1: the whole report, 0 the outermost group
    QVariant value;
    int first = 0; // positions in GroupTree::order(), [first, end)
    int end = 0;
    int number = 0; // 1-based among the groups of its level, in print order
    Totals totals;
    const GroupNode *parent = nullptr;
    std::vector<GroupNode> children;

    int rowCount() const { return end - first; }
    bool isLastChild() const { return parent && &parent->children.back() == this; }
};

class GroupTree
{
public:
    GroupTree(const RecordStore &records, const LayoutDefinition &layout, QList<int> order);
    GroupTree(const GroupTree &) = delete;
    GroupTree &operator=(const GroupTree &) = delete;

    const GroupNode &root() const { return m_root; }
    // Record numbers in print order.
    const QList<int> &order() const { return m_order; }

private:
    void build(const RecordStore &records, const LayoutDefinition &layout);
    static void link(GroupNode &node);

    QList<int> m_order;
    GroupNode m_root;
};

} // namespace Engine
