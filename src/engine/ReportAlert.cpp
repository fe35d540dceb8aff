#include "engine/ReportAlert.h"

namespace Engine {

ReportAlert::ReportAlert(const QString &name, const QString &condition)
    : m_name(name), m_formula(Formula::Parse(QStringLiteral("alert \"%1\"").arg(name), condition))
{
}

void ReportAlert::evaluate(const RecordStore &records, const QList<int> &selected)
{
    QList<int> fired;
    for (int row : selected) {
        if (m_formula.test(records.row(row)))
            fired.append(row);
    }
    m_records.setRows(std::move(fired));
}

} // namespace Engine
