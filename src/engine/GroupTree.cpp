#include "engine/GroupTree.h"

namespace Engine {

GroupTree::GroupTree(const RecordStore &records, const LayoutDefinition &layout, QList<int> order)
    : m_order(std::move(order)), m_root(-1, layout.grandTotals, records)
{
    build(records, layout);
    link(m_root);
}

void GroupTree::build(const RecordStore &records, const LayoutDefinition &layout)
{
    const int levels = int(layout.groups.size());
    QList<int> fields;
    for (const GroupDefinition &group : layout.groups)
        fields.append(records.fieldIndex(group.field));
    std::vector<int> numbers(size_t(levels), 0);
    // The open group of each level; the vectors only grow at their ends, so the path is rebuilt
    // from the root whenever a group opens.
    std::vector<GroupNode *> path(size_t(levels), nullptr);
    m_root.end = int(m_order.size());
    for (int position = 0; position < m_order.size(); ++position) {
        const RecordStore::Row row = records.row(m_order[position]);
        int changed = 0;
        while (changed < levels && path[size_t(changed)] &&
               row.value(fields[changed]) == path[size_t(changed)]->value)
            ++changed;
        for (int level = levels - 1; level >= changed; --level) {
            if (path[size_t(level)])
                path[size_t(level)]->end = position;
        }
        for (int level = changed; level < levels; ++level) {
            GroupNode &parent = level == 0 ? m_root : *path[size_t(level - 1)];
            parent.children.emplace_back(level, layout.groups[level].subtotals, records);
            GroupNode &node = parent.children.back();
            node.value = row.value(fields[level]);
            node.first = position;
            node.number = ++numbers[size_t(level)];
            path[size_t(level)] = &node;
        }
        m_root.totals.add(row);
        for (GroupNode *node : path)
            node->totals.add(row);
    }
    for (GroupNode *node : path) {
        if (node)
            node->end = int(m_order.size());
    }
}

void GroupTree::link(GroupNode &node)
{
    for (GroupNode &child : node.children) {
        child.parent = &node;
        link(child);
    }
}

} // namespace Engine
