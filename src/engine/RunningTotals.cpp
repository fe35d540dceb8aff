#include "engine/RunningTotals.h"

namespace Engine {

RunningTotals::RunningTotals(const ReportFormulas &formulas)
    : m_formulas(&formulas), m_running(formulas.runningTotals().size()), m_values(qsizetype(m_running.size()))
{
}

void RunningTotals::startGroup(int level)
{
    const std::vector<BoundRunningTotal> &bound = m_formulas->runningTotals();
    for (size_t i = 0; i < bound.size(); ++i) {
        if (bound[i].resetLevel == level) {
            m_running[i] = Accumulator();
            m_values[qsizetype(i)] = QVariant();
        }
    }
}

void RunningTotals::add(const ReportContext &context)
{
    const std::vector<BoundRunningTotal> &bound = m_formulas->runningTotals();
    for (size_t i = 0; i < bound.size(); ++i) {
        const bool distinct = bound[i].function == SummaryFunction::DistinctCount;
        m_running[i].add(context.valueOf(bound[i].operand), distinct);
        // A running share of a whole has no whole yet: it runs as a sum.
        const SummaryFunction shown =
            bound[i].function == SummaryFunction::PercentOfSum ? SummaryFunction::Sum : bound[i].function;
        m_values[qsizetype(i)] = m_running[i].value(shown);
    }
}

} // namespace Engine
