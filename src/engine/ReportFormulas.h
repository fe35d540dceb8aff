#pragma once
// The names a report's formulas use (fields, formula fields, running totals, special names), the
// summaries its groups keep for them, and every formula and text of the report bound to those.

#include "engine/ReportDefinition.h"
#include "engine/SectionRules.h"
#include "engine/Summary.h"
#include "engine/TextTemplate.h"

#include <QDate>
#include <vector>

namespace Engine {

struct BoundRunningTotal
{
    SummaryFunction function = SummaryFunction::Sum;
    NameRef operand;
    int resetLevel = -1; // the group level that starts it again; -1: never
};

// A total under its field's column: a group's <subtotal> or a <grandTotal>.
struct Subtotal
{
    SummaryRef ref;
    NameRef operand;
    SummaryFunction function = SummaryFunction::Sum;
};

// What a group level asks of its groups: which to keep, in which order.
struct GroupRule
{
    NameRef field;
    Formula selection;
    Formula sortBy;
    bool descending = false;
    int top = 0;
    TextTemplate caption;
    TextTemplate footer;
    SectionRules header;
    SectionRules footerSection;
};

class ReportFormulas : public FormulaNames
{
public:
    // Binds every formula and text of the report; raises EngineError for a fault in any of them.
    ReportFormulas(const ReportDefinition &definition, const RecordStore &records,
                   const Formula::ParameterLookup &parameters);

    // PrintDate, PageNumber, TotalPages, RecordNumber, GroupNumber, GroupRecordNumber, Title.
    static bool IsSpecialName(const QString &name);

    std::optional<NameRef> resolve(const QString &name) const override;
    QStringList names() const override;
    QVariantList parameter(const QString &name) const override;
    QString summary(const QString &function, const NameRef &operand, const QString &groupField,
                    int defaultLevel, SummaryRef &summary) override;

    // The date PrintDate gives; today while it is not valid.
    QDate printDate() const { return m_printDate.isValid() ? m_printDate : QDate::currentDate(); }
    void setPrintDate(QDate date) { m_printDate = date; }

    int levels() const { return int(m_groups.size()); }
    const GroupRule &group(int level) const { return m_groups[size_t(level)]; }
    // The summaries kept for each group of a level, -1 for the report.
    const std::vector<BoundSummary> &summaries(int level) const { return m_slots[size_t(level + 1)]; }
    // The <subtotal>s of a group level, or the <grandTotal>s at level -1.
    const std::vector<Subtotal> &subtotals(int level) const { return m_subtotals[size_t(level + 1)]; }
    const Formula &formulaField(int index) const { return m_formulaFields[size_t(index)]; }
    const std::vector<BoundRunningTotal> &runningTotals() const { return m_runningTotals; }
    const QList<std::pair<NameRef, bool>> &recordSorts() const { return m_sorts; }
    const TextTemplate &pageHeader() const { return m_pageHeader; }
    const TextTemplate &pageFooter() const { return m_pageFooter; }
    const SectionRules &reportHeader() const { return m_reportHeader; }
    const SectionRules &details() const { return m_details; }
    const SectionRules &reportFooter() const { return m_reportFooter; }
    const SectionRules &noData() const { return m_noData; }
    // The conditions of the layout's column `index`; none for a column the layout does not declare.
    const Conditions &column(int index) const;
    // Whether groups or records leave the order in which the query gave them.
    bool reorders() const;

private:
    QDate m_printDate;
    int levelOf(const QString &groupField) const;
    NameRef recordName(const QString &what, const QString &name) const;
    void addSubtotal(const QString &what, const SummaryDefinition &definition, int level);
    void checkOperands() const;
    void checkCycles() const;
    void bindSections(const LayoutDefinition &layout);

    QStringList m_fields;
    QStringList m_formulaNames;
    QStringList m_runningNames;
    QStringList m_groupFields;
    Formula::ParameterLookup m_parameters;
    std::vector<Formula> m_formulaFields;
    std::vector<BoundRunningTotal> m_runningTotals;
    std::vector<GroupRule> m_groups;
    QList<std::pair<NameRef, bool>> m_sorts;         // field, descending
    std::vector<std::vector<BoundSummary>> m_slots;  // by level + 1
    std::vector<std::vector<Subtotal>> m_subtotals;  // by level + 1
    std::vector<std::pair<int, QString>> m_operands; // formula fields summarized, and by which formula
    TextTemplate m_pageHeader;
    TextTemplate m_pageFooter;
    SectionRules m_reportHeader;
    SectionRules m_details;
    SectionRules m_reportFooter;
    SectionRules m_noData;
    std::vector<Conditions> m_columns;
};

} // namespace Engine
