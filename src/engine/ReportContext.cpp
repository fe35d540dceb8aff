#include "engine/ReportContext.h"

#include <QDate>

namespace Engine {

ReportContext::ReportContext(const ReportFormulas &formulas, const QString &title)
    : m_formulas(formulas), m_title(title)
{
}

void ReportContext::setRecord(const RecordStore::Row &row, int position, const GroupNode *group)
{
    m_row = row;
    m_position = position;
    m_node = group;
    m_inGroup = false;
    m_formulaValues.clear();
}

void ReportContext::setGroup(const GroupNode &group, const RecordStore::Row &firstRow)
{
    setRecord(firstRow, group.first, &group);
    m_inGroup = true;
}

void ReportContext::setPage(int number, int total)
{
    m_page = number;
    m_pages = total;
}

QVariant ReportContext::valueOf(const NameRef &ref) const
{
    return ref.kind == NameRef::RecordField ? field(ref.index) : named(ref);
}

QVariant ReportContext::field(int index) const
{
    return m_row.value(index);
}

QVariant ReportContext::named(const NameRef &name) const
{
    switch (name.kind) {
    case NameRef::RecordField: return field(name.index);
    case NameRef::FormulaField: {
        const auto slot = size_t(name.index);
        m_formulaValues.resize(std::max(m_formulaValues.size(), slot + 1));
        // Indexed again after the evaluation: a formula that uses a later one grows the cache under it.
        if (!m_formulaValues[slot]) {
            QVariant value = m_formulas.formulaField(name.index).evaluate(*this);
            m_formulaValues[slot] = std::move(value);
        }
        return *m_formulaValues[slot];
    }
    case NameRef::RunningTotal: return m_running ? m_running->value(name.index) : QVariant();
    case NameRef::Special: return special(name.index);
    }
    return QVariant();
}

QVariant ReportContext::special(int name) const
{
    switch (name) {
    case NameRef::PrintDate: return m_formulas.printDate();
    case NameRef::PageNumber: return m_page > 0 ? QVariant(double(m_page)) : QVariant();
    case NameRef::TotalPages: return m_pages > 0 ? QVariant(double(m_pages)) : QVariant();
    case NameRef::RecordNumber:
        return m_position >= 0 && !m_inGroup ? QVariant(double(m_position + 1)) : QVariant();
    case NameRef::GroupNumber:
        return m_node && m_node->level >= 0 ? QVariant(double(m_node->number)) : QVariant();
    case NameRef::GroupRecordNumber:
        return m_node && !m_inGroup ? QVariant(double(m_position - m_node->first + 1)) : QVariant();
    case NameRef::Title: return m_title;
    case NameRef::Value: return m_node && m_node->level >= 0 ? m_node->value : QVariant();
    }
    return QVariant();
}

QVariant ReportContext::summary(const SummaryRef &summary) const
{
    const GroupNode *node = m_node;
    while (node && node->level > summary.level)
        node = node->parent;
    if (!node || node->level != summary.level || summary.slot < 0)
        return QVariant();
    const BoundSummary &bound = m_formulas.summaries(summary.level)[size_t(summary.slot)];
    const Accumulator &own = node->summaries[size_t(summary.slot)];
    if (bound.function != SummaryFunction::PercentOfSum)
        return own.value(bound.function);
    if (!node->parent || bound.parentSlot < 0)
        return 100.0;
    const double whole = node->parent->summaries[size_t(bound.parentSlot)].sum();
    return whole != 0 ? QVariant(own.sum() / whole * 100) : QVariant();
}

} // namespace Engine
