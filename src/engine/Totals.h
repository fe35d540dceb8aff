#pragma once
// Running summaries (sum, count, avg, min, max) of some fields over a group or the whole report.

#include "engine/RecordStore.h"
#include "engine/ReportDefinition.h"

namespace Engine {

class Totals
{
public:
    Totals(const QList<SummaryDefinition> &summaries, const RecordStore &records);

    void add(const RecordStore::Row &row);
    void reset();
    int size() const { return int(m_summaries.size()); }
    const SummaryDefinition &summary(int index) const { return m_summaries[index]; }
    // The field index the summary reads, -1 when the records lack it.
    int fieldIndex(int index) const { return m_fields[index]; }
    // The summary's value; null when nothing was counted (count gives 0).
    QVariant value(int index) const;

private:
    struct Running
    {
        double sum = 0;
        double min = 0;
        double max = 0;
        int count = 0;   // non-null values
        int numbers = 0; // values that read as numbers
    };

    QList<SummaryDefinition> m_summaries;
    QList<int> m_fields;
    QList<Running> m_running;
};

} // namespace Engine
