#include "engine/GroupWalk.h"

#include "engine/Report.h"

namespace Engine {

namespace {

void CloseGroups(int downTo, std::vector<Totals> &groupTotals, const QVariantList &current,
                 GroupVisitor &visitor)
{
    for (int level = int(groupTotals.size()) - 1; level >= downTo; --level) {
        if (groupTotals[level].size() > 0)
            visitor.groupFooter(level, current[level], groupTotals[level]);
        groupTotals[level].reset();
    }
}

} // namespace

void WalkGroups(const Report &report, GroupVisitor &visitor)
{
    const LayoutDefinition &layout = report.definition().layout;
    const RecordStore &records = report.records();
    std::vector<Totals> groupTotals;
    QList<int> groupFields;
    for (const GroupDefinition &group : layout.groups) {
        groupTotals.emplace_back(group.subtotals, records);
        groupFields.append(records.fieldIndex(group.field));
    }
    Totals grand(layout.grandTotals, records);
    QVariantList current(groupFields.size());
    bool first = true;
    for (int rowIndex : report.selectedRows()) {
        const RecordStore::Row &row = records.row(rowIndex);
        int changed = 0;
        while (!first && changed < groupFields.size() && row.value(groupFields[changed]) == current[changed])
            ++changed;
        if (!first)
            CloseGroups(changed, groupTotals, current, visitor);
        for (int level = first ? 0 : changed; level < groupFields.size(); ++level) {
            current[level] = row.value(groupFields[level]);
            visitor.groupHeader(level, current[level], first && level == 0);
        }
        first = false;
        visitor.detail(row);
        for (Totals &totals : groupTotals)
            totals.add(row);
        grand.add(row);
    }
    if (!first)
        CloseGroups(0, groupTotals, current, visitor);
    if (grand.size() > 0)
        visitor.grandTotal(grand);
}

} // namespace Engine
