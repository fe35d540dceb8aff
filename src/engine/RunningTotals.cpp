#include "engine/RunningTotals.h"

namespace Engine {

RunningTotals::RunningTotals(const ReportFormulas &formulas)
    : m_formulas(&formulas), m_running(formulas.runningTotals().size()), m_values(qsizetype(m_running.size()))
{
}

void RunningTotals::startGroup(int level)
{
    const std::vector<RunningTotalSpec> &specs = m_formulas->runningTotals();
    for (size_t i = 0; i < specs.size(); ++i) {
        if (specs[i].resetLevel == level) {
            m_running[i] = Accumulator();
            m_values[qsizetype(i)] = QVariant();
        }
    }
}

void RunningTotals::add(const ReportContext &context)
{
    const std::vector<RunningTotalSpec> &specs = m_formulas->runningTotals();
    for (size_t i = 0; i < specs.size(); ++i) {
        const bool distinct = specs[i].function == SummaryFunction::DistinctCount;
        m_running[i].add(context.valueOf(specs[i].operand), distinct);
        // A running share of a whole has no whole yet: it runs as a sum.
        const SummaryFunction shown =
            specs[i].function == SummaryFunction::PercentOfSum ? SummaryFunction::Sum : specs[i].function;
        m_values[qsizetype(i)] = m_running[i].value(shown);
    }
}

} // namespace Engine
