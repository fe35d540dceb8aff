#pragma once
// The running totals of a report while its records are walked in print order.

#include "engine/ReportContext.h"

namespace Engine {

class RunningTotals
{
public:
    explicit RunningTotals(const ReportFormulas &formulas);

    // A group of `level` starts: the totals that start again with it do.
    void startGroup(int level);
    // The record in `context` counts in every total.
    void add(const ReportContext &context);
    // By the running totals' index, as ReportContext reads them.
    const QVariantList &values() const { return m_values; }

private:
    const ReportFormulas *m_formulas;
    std::vector<Accumulator> m_running;
    QVariantList m_values;
};

} // namespace Engine
