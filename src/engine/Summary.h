#pragma once
// Summaries over the records of a group or the report: what is summarized and how, and the running
// state that gathers them.

#include "engine/Formula.h"

#include <QSet>
#include <optional>

namespace Engine {

enum class SummaryFunction { Sum, Count, DistinctCount, Average, Minimum, Maximum, PercentOfSum };

// By the names reports use: sum, count, distinctcount, average (avg), minimum (min), maximum (max),
// percentofsum (percent); any case.
std::optional<SummaryFunction> SummaryFunctionNamed(const QString &name);

struct BoundSummary
{
    SummaryFunction function = SummaryFunction::Sum;
    NameRef operand;
    // PercentOfSum: the sum of the same operand one level up, which it is a share of.
    int parentSlot = -1;

    bool sameAs(const BoundSummary &other) const
    {
        return function == other.function && operand.kind == other.operand.kind &&
               operand.index == other.operand.index;
    }
};

class Accumulator
{
public:
    void add(const QVariant &value, bool distinct);
    // The summary's value; null when nothing was counted (counts give 0). A PercentOfSum gives its sum,
    // which the caller divides.
    QVariant value(SummaryFunction function) const;
    double sum() const { return m_sum; }

private:
    double m_sum = 0;
    double m_min = 0;
    double m_max = 0;
    int m_count = 0;   // values that are not null
    int m_numbers = 0; // values that read as numbers
    QSet<QString> m_distinct;
};

} // namespace Engine
