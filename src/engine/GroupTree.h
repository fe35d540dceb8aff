#pragma once
// The chosen records of a report in print order, cut into nested groups, each group with its summaries;
// groups left out, sorted and cut to the first N as the layout asks.

#include "engine/RecordStore.h"
#include "engine/Summary.h"

#include <vector>

namespace Engine {

class ReportFormulas;

struct GroupNode
{
    int level = -1; // -1: the whole report, 0 the outermost group
    QVariant value;
    int first = 0; // positions in GroupTree::order(), [first, end)
    int end = 0;
    int number = 0;                     // 1-based among the groups of its level, in print order
    std::vector<Accumulator> summaries; // by the slots of ReportFormulas::summaries(level)
    const GroupNode *parent = nullptr;
    std::vector<GroupNode> children;

    int rowCount() const { return end - first; }
    bool isLastChild() const { return parent && &parent->children.back() == this; }
};

// The groups of `level` below `node` (or `node` itself when it is of that level), in print order.
void GroupsOfLevel(const GroupNode &node, int level, std::vector<const GroupNode *> &found);

class GroupTree
{
public:
    GroupTree(const RecordStore &records, const ReportFormulas &formulas, QList<int> order);
    GroupTree(const GroupTree &) = delete;
    GroupTree &operator=(const GroupTree &) = delete;

    const GroupNode &root() const { return m_root; }
    // Record numbers in print order.
    const QList<int> &order() const { return m_order; }

private:
    void sortRecords();
    void build();
    bool leaveOut();
    void chooseChildren(const GroupNode &node, QList<std::pair<int, int>> &dropped);
    void sortGroups(GroupNode &node);
    void flatten();

    const RecordStore &m_records;
    const ReportFormulas &m_formulas;
    QList<int> m_order;
    GroupNode m_root;
};

} // namespace Engine
