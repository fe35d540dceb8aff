#include "engine/GroupTree.h"

#include "engine/ReportContext.h"
#include "engine/StopCheck.h"
#include "engine/ValueFormat.h"

#include <QHash>

namespace Engine {

namespace {

void Link(GroupNode &node)
{
    for (GroupNode &child : node.children) {
        child.parent = &node;
        Link(child);
    }
}

// A group's value as a sort key: what it is worth to its parent by the level's sort formula.
QVariant SortKey(const Formula &sortBy, ReportContext &context, const GroupNode &group,
                 const RecordStore &records, const QList<int> &order)
{
    context.setGroup(group, records.row(order[group.first]));
    return sortBy.evaluate(context);
}

} // namespace

GroupTree::GroupTree(const RecordStore &records, const ReportFormulas &formulas, QList<int> order)
    : m_records(records), m_formulas(formulas), m_order(std::move(order))
{
    if (!formulas.recordSorts().isEmpty())
        sortRecords();
    build();
    if (leaveOut())
        build();
    sortGroups(m_root);
    Link(m_root);
    flatten();
}

// Records sort within their groups, which keep the order in which the query gave their first records.
void GroupTree::sortRecords()
{
    struct Item
    {
        QVariantList keys;
        int record;
    };
    ReportContext context(m_formulas, QString());
    std::vector<QHash<QString, int>> firstSeen(size_t(m_formulas.levels()));
    std::vector<Item> items;
    items.reserve(size_t(m_order.size()));
    for (int position = 0; position < m_order.size(); ++position) {
        CheckStop();
        context.setRecord(m_records.row(m_order[position]), position, nullptr);
        Item item{{}, m_order[position]};
        QString path;
        for (int level = 0; level < m_formulas.levels(); ++level) {
            path += PlainText(context.valueOf(m_formulas.group(level).field)) + QChar(0x1F);
            QHash<QString, int> &seen = firstSeen[size_t(level)];
            item.keys.append(double(*seen.insert(path, seen.value(path, int(seen.size())))));
        }
        for (const auto &[field, descending] : m_formulas.recordSorts())
            item.keys.append(context.valueOf(field));
        items.push_back(std::move(item));
    }
    const int levels = m_formulas.levels();
    std::stable_sort(items.begin(), items.end(), [&](const Item &a, const Item &b) {
        for (int k = 0; k < a.keys.size(); ++k) {
            const int order = CompareValues(a.keys[k], b.keys[k]);
            if (order != 0)
                return k >= levels && m_formulas.recordSorts()[k - levels].second ? order > 0 : order < 0;
        }
        return false;
    });
    for (size_t i = 0; i < items.size(); ++i)
        m_order[qsizetype(i)] = items[i].record;
}

void GroupTree::build()
{
    const int levels = m_formulas.levels();
    ReportContext context(m_formulas, QString());
    m_root = GroupNode();
    m_root.summaries.resize(m_formulas.summaries(-1).size());
    std::vector<int> numbers(size_t(levels), 0);
    // The open group of each level; a level's vector only grows at its end while its parent is open.
    std::vector<GroupNode *> path(size_t(levels), nullptr);
    m_root.end = int(m_order.size());
    const auto add = [&](GroupNode &node) {
        const std::vector<BoundSummary> &bound = m_formulas.summaries(node.level);
        for (size_t slot = 0; slot < bound.size(); ++slot)
            node.summaries[slot].add(context.valueOf(bound[slot].operand),
                                     bound[slot].function == SummaryFunction::DistinctCount);
    };
    for (int position = 0; position < m_order.size(); ++position) {
        CheckStop();
        context.setRecord(m_records.row(m_order[position]), position, nullptr);
        QVariantList keys;
        for (int level = 0; level < levels; ++level)
            keys.append(context.valueOf(m_formulas.group(level).field));
        int changed = 0;
        while (changed < levels && path[size_t(changed)] && keys[changed] == path[size_t(changed)]->value)
            ++changed;
        for (int level = levels - 1; level >= changed; --level) {
            if (path[size_t(level)])
                path[size_t(level)]->end = position;
        }
        for (int level = changed; level < levels; ++level) {
            GroupNode &parent = level == 0 ? m_root : *path[size_t(level - 1)];
            GroupNode &node = parent.children.emplace_back();
            node.level = level;
            node.value = keys[level];
            node.first = position;
            node.number = ++numbers[size_t(level)];
            node.summaries.resize(m_formulas.summaries(level).size());
            path[size_t(level)] = &node;
        }
        add(m_root);
        for (GroupNode *node : path)
            add(*node);
    }
    for (GroupNode *node : path) {
        if (node)
            node->end = int(m_order.size());
    }
    Link(m_root);
}

// Groups that their level's selection leaves out, or that fall beyond its top N; true when any did.
bool GroupTree::leaveOut()
{
    QList<std::pair<int, int>> dropped; // position ranges
    chooseChildren(m_root, dropped);
    if (dropped.isEmpty())
        return false;
    std::sort(dropped.begin(), dropped.end());
    QList<int> kept;
    int next = 0;
    for (const auto &[first, end] : dropped) {
        for (int position = next; position < first; ++position)
            kept.append(m_order[position]);
        next = std::max(next, end);
    }
    for (int position = next; position < m_order.size(); ++position)
        kept.append(m_order[position]);
    m_order = std::move(kept);
    return true;
}

void GroupTree::chooseChildren(const GroupNode &node, QList<std::pair<int, int>> &dropped)
{
    if (node.children.empty())
        return;
    const GroupRule &rule = m_formulas.group(node.level + 1);
    ReportContext context(m_formulas, QString());
    std::vector<std::pair<QVariant, const GroupNode *>> chosen;
    for (const GroupNode &child : node.children) {
        context.setGroup(child, m_records.row(m_order[child.first]));
        if (rule.selection.isEmpty() || rule.selection.test(context))
            chosen.emplace_back(rule.sortBy.isEmpty() ? QVariant() : rule.sortBy.evaluate(context), &child);
        else
            dropped.append({child.first, child.end});
    }
    if (rule.top > 0) {
        std::stable_sort(chosen.begin(), chosen.end(), [&](const auto &a, const auto &b) {
            const int order = CompareValues(a.first, b.first);
            return rule.descending ? order > 0 : order < 0;
        });
        for (size_t i = size_t(rule.top); i < chosen.size(); ++i)
            dropped.append({chosen[i].second->first, chosen[i].second->end});
        chosen.resize(std::min(chosen.size(), size_t(rule.top)));
    }
    for (const auto &[key, child] : chosen)
        chooseChildren(*child, dropped);
}

void GroupTree::sortGroups(GroupNode &node)
{
    for (GroupNode &child : node.children)
        sortGroups(child);
    if (node.children.empty() || m_formulas.group(node.level + 1).sortBy.isEmpty())
        return;
    const GroupRule &rule = m_formulas.group(node.level + 1);
    ReportContext context(m_formulas, QString());
    std::vector<std::pair<QVariant, size_t>> keys;
    for (size_t i = 0; i < node.children.size(); ++i)
        keys.emplace_back(SortKey(rule.sortBy, context, node.children[i], m_records, m_order), i);
    std::stable_sort(keys.begin(), keys.end(), [&](const auto &a, const auto &b) {
        const int order = CompareValues(a.first, b.first);
        return rule.descending ? order > 0 : order < 0;
    });
    std::vector<GroupNode> sorted;
    sorted.reserve(node.children.size());
    for (const auto &[key, index] : keys)
        sorted.push_back(std::move(node.children[index]));
    node.children = std::move(sorted);
}

// The print order after sorting: each group's records follow its place, and groups are numbered anew.
void GroupTree::flatten()
{
    QList<int> order;
    order.reserve(m_order.size());
    std::vector<int> numbers(size_t(m_formulas.levels()), 0);
    const std::function<void(GroupNode &)> place = [&](GroupNode &node) {
        const int first = int(order.size());
        if (node.children.empty()) {
            for (int position = node.first; position < node.end; ++position)
                order.append(m_order[position]);
        }
        for (GroupNode &child : node.children)
            place(child);
        node.first = first;
        node.end = int(order.size());
        if (node.level >= 0)
            node.number = ++numbers[size_t(node.level)];
    };
    place(m_root);
    m_order = std::move(order);
}

void GroupsOfLevel(const GroupNode &node, int level, std::vector<const GroupNode *> &found)
{
    if (node.level == level) {
        found.push_back(&node);
        return;
    }
    for (const GroupNode &child : node.children)
        GroupsOfLevel(child, level, found);
}

} // namespace Engine
