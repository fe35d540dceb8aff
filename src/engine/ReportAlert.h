#pragma once
// An alert of a report: a named condition and the records of the last run for which it holds.

#include "engine/Formula.h"

#include <QList>

namespace Engine {

class AlertingRecords
{
public:
    int Count() const { return int(m_rows.size()); }
    // Record numbers (0-based, in the run's records) that fired the alert.
    const QList<int> &rows() const { return m_rows; }
    void setRows(QList<int> rows) { m_rows = std::move(rows); }

private:
    QList<int> m_rows;
};

class ReportAlert
{
public:
    // Raises EngineError when the condition does not parse.
    ReportAlert(const QString &name, const QString &condition);

    QString Name() const { return m_name; }
    QString ConditionFormula() const { return m_formula.text(); }
    const Engine::AlertingRecords &AlertingRecords() const { return m_records; }

    // The condition, to be bound to the records before evaluate().
    Formula &formula() { return m_formula; }
    // Re-evaluates the condition over the chosen records.
    void evaluate(const RecordStore &records, const QList<int> &selected);

private:
    QString m_name;
    Formula m_formula;
    Engine::AlertingRecords m_records;
};

} // namespace Engine
