#pragma once
// The values a report's formulas read while a record or a group is laid out or exported: its fields,
// its formula fields, its group's summaries, the running totals, the page.

#include "engine/GroupTree.h"
#include "engine/ReportFormulas.h"

namespace Engine {

class ReportContext : public FormulaContext
{
public:
    ReportContext(const ReportFormulas &formulas, const QString &title);

    // A record at `position` in print order, in `group` (its innermost group, or the report's root).
    void setRecord(const RecordStore::Row &row, int position, const GroupNode *group);
    // A group, whose header or footer reads the fields of its first record.
    void setGroup(const GroupNode &group, const RecordStore::Row &firstRow);
    void setPage(int number, int total);
    // The running totals' present values, by their index; null while none are carried.
    void setRunningTotals(const QVariantList *values) { m_running = values; }

    // The value of a field or a name of the report.
    QVariant valueOf(const NameRef &ref) const;

    QVariant field(int index) const override;
    QVariant named(const NameRef &name) const override;
    QVariant summary(const SummaryRef &summary) const override;

private:
    QVariant special(int name) const;

    const ReportFormulas &m_formulas;
    QString m_title;
    RecordStore::Row m_row;
    int m_position = -1;
    const GroupNode *m_node = nullptr;
    bool m_inGroup = false; // the group itself, not a record of it
    int m_page = 0;
    int m_pages = 0;
    const QVariantList *m_running = nullptr;
    // The formula fields of the record, each worked out once.
    mutable std::vector<std::optional<QVariant>> m_formulaValues;
};

} // namespace Engine
