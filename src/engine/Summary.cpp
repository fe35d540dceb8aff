#include "engine/Summary.h"

#include "engine/ValueFormat.h"

namespace Engine {

std::optional<SummaryFunction> SummaryFunctionNamed(const QString &name)
{
    static const QList<std::pair<QLatin1String, SummaryFunction>> names = {
        {QLatin1String("sum"), SummaryFunction::Sum},
        {QLatin1String("count"), SummaryFunction::Count},
        {QLatin1String("distinctcount"), SummaryFunction::DistinctCount},
        {QLatin1String("average"), SummaryFunction::Average},
        {QLatin1String("avg"), SummaryFunction::Average},
        {QLatin1String("minimum"), SummaryFunction::Minimum},
        {QLatin1String("min"), SummaryFunction::Minimum},
        {QLatin1String("maximum"), SummaryFunction::Maximum},
        {QLatin1String("max"), SummaryFunction::Maximum},
        {QLatin1String("percentofsum"), SummaryFunction::PercentOfSum},
        {QLatin1String("percent"), SummaryFunction::PercentOfSum}};
    for (const auto &[text, function] : names) {
        if (name.compare(text, Qt::CaseInsensitive) == 0)
            return function;
    }
    return std::nullopt;
}

void Accumulator::add(const QVariant &value, bool distinct)
{
    if (value.isNull())
        return;
    ++m_count;
    if (distinct)
        m_distinct.insert(PlainText(value));
    double number = 0;
    if (!NumberOf(value, number))
        return;
    m_sum += number;
    m_min = m_numbers == 0 ? number : std::min(m_min, number);
    m_max = m_numbers == 0 ? number : std::max(m_max, number);
    ++m_numbers;
}

QVariant Accumulator::value(SummaryFunction function) const
{
    switch (function) {
    case SummaryFunction::Count: return double(m_count);
    case SummaryFunction::DistinctCount: return double(m_distinct.size());
    default: break;
    }
    if (m_numbers == 0)
        return QVariant();
    switch (function) {
    case SummaryFunction::Average: return m_sum / m_numbers;
    case SummaryFunction::Minimum: return m_min;
    case SummaryFunction::Maximum: return m_max;
    default: return m_sum;
    }
}

} // namespace Engine
