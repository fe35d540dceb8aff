#include "engine/Totals.h"

#include "engine/ValueFormat.h"

namespace Engine {

Totals::Totals(const QList<SummaryDefinition> &summaries, const RecordStore &records)
    : m_summaries(summaries), m_running(summaries.size())
{
    for (const SummaryDefinition &summary : summaries)
        m_fields.append(records.fieldIndex(summary.field));
}

void Totals::add(const RecordStore::Row &row)
{
    for (int i = 0; i < m_summaries.size(); ++i) {
        if (m_fields[i] < 0)
            continue;
        const QVariant &value = row[m_fields[i]];
        if (value.isNull())
            continue;
        Running &running = m_running[i];
        ++running.count;
        double number = 0;
        if (!NumberOf(value, number))
            continue;
        running.sum += number;
        running.min = running.numbers == 0 ? number : std::min(running.min, number);
        running.max = running.numbers == 0 ? number : std::max(running.max, number);
        ++running.numbers;
    }
}

void Totals::reset()
{
    m_running.fill(Running());
}

QVariant Totals::value(int index) const
{
    const Running &running = m_running[index];
    const QString &function = m_summaries[index].function;
    if (function == QLatin1String("count"))
        return double(running.count);
    if (running.numbers == 0)
        return QVariant();
    if (function == QLatin1String("avg"))
        return running.sum / running.numbers;
    if (function == QLatin1String("min"))
        return running.min;
    if (function == QLatin1String("max"))
        return running.max;
    return running.sum;
}

} // namespace Engine
