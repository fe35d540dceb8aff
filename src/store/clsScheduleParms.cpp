// The parameter and collection tables of clsSchedule.
#include "clsSchedule.h"

#include "core/QorloError.h"

#include <algorithm>

namespace {

[[noreturn]] void OutOfRange()
{
    throw QorloError(QorloError::OutOfRange);
}

} // namespace

// ------------------------------------------------------------------------------------------ parameters

void clsSchedule::ParmAddNew()
{
    if (m_parmCount >= MaxParms)
        OutOfRange();
    Ensure(m_parms, m_parmCount);
    m_parmPosition = m_parmCount++;
}

void clsSchedule::ParmLocate(int row)
{
    m_parmPosition = row;
}

QString &clsSchedule::parmAt(int column)
{
    if (m_parmPosition < 0 || m_parmPosition >= MaxParms)
        OutOfRange();
    Ensure(m_parms, m_parmPosition);
    return m_parms[m_parmPosition][column];
}

const QString &clsSchedule::parmAt(int column) const
{
    static const QString blank;
    if (m_parmPosition < 0 || m_parmPosition >= MaxParms)
        OutOfRange();
    return size_t(m_parmPosition) < m_parms.size() ? m_parms[m_parmPosition][column] : blank;
}

QString clsSchedule::ParmReportID() const
{
    return parmAt(parmReportID);
}
void clsSchedule::SetParmReportID(const QString &value)
{
    parmAt(parmReportID) = value;
}
QString clsSchedule::ParmName() const
{
    return parmAt(parmName);
}
void clsSchedule::SetParmName(const QString &value)
{
    parmAt(parmName) = value;
}
QString clsSchedule::ParmValueType() const
{
    return parmAt(parmValueType);
}
void clsSchedule::SetParmValueType(const QString &value)
{
    parmAt(parmValueType) = value;
}
QString clsSchedule::ParmValue() const
{
    return parmAt(parmValue);
}
void clsSchedule::SetParmValue(const QString &value)
{
    parmAt(parmValue) = value;
}
QString clsSchedule::ParmPrompt() const
{
    return parmAt(parmPrompt);
}
void clsSchedule::SetParmPrompt(const QString &value)
{
    parmAt(parmPrompt) = value;
}
QString clsSchedule::ParmMulti() const
{
    return parmAt(parmMulti);
}
void clsSchedule::SetParmMulti(const QString &value)
{
    parmAt(parmMulti) = value;
}

QString clsSchedule::ParmCell(int row, int column) const
{
    if (row < 0 || row >= MaxParms || column < 0 || column >= ParmColumnCount)
        OutOfRange();
    return size_t(row) < m_parms.size() ? m_parms[row][column] : QString();
}

void clsSchedule::ParmDuplicate(const QString &oldID, const QString &newID)
{
    const int present = m_parmCount;
    for (int row = 0; row < present; ++row) {
        if (m_parms[row][parmReportID] != oldID)
            continue;
        if (m_parmCount >= MaxParms)
            OutOfRange();
        Ensure(m_parms, m_parmCount);
        ParmRow &copy = m_parms[m_parmCount++];
        copy = m_parms[row];
        copy[parmReportID] = newID;
    }
}

void clsSchedule::ParmRemove(const QString &reportID)
{
    for (int row = 0; row < m_parmCount; ++row) {
        if (m_parms[row][parmReportID] == reportID)
            m_parms[row][parmReportID].clear();
    }
}

qint16 clsSchedule::ParmReportCount(const QString &reportID) const
{
    qint16 count = 0;
    for (int row = 0; row < m_parmCount; ++row) {
        if (m_parms[row][parmReportID] == reportID && !m_parms[row][parmValue].isEmpty())
            ++count;
    }
    return count;
}

void clsSchedule::ParmUpdate(const QString &reportID, const QString &name, const QString &valueType,
                             const QString &value, const QString &prompt)
{
    for (int row = 0; row < m_parmCount; ++row) {
        ParmRow &parm = m_parms[row];
        if (parm[parmReportID] == reportID && parm[parmName] == name) {
            parm[parmValueType] = valueType;
            parm[parmValue] = value;
            parm[parmPrompt] = prompt;
            return;
        }
    }
    if (m_parmCount >= MaxParms)
        OutOfRange();
    Ensure(m_parms, m_parmCount);
    ParmRow &parm = m_parms[m_parmCount++];
    parm[parmReportID] = reportID;
    parm[parmName] = name;
    parm[parmValueType] = valueType;
    parm[parmValue] = value;
    parm[parmPrompt] = prompt;
}

void clsSchedule::SetCollectionParm(const QString &sourceID, const QString &targetID)
{
    for (int source = 0; source < m_parmCount; ++source) {
        const ParmRow &from = m_parms[source];
        if (from[parmReportID] != sourceID || from[parmValue].isEmpty())
            continue;
        for (int target = 0; target < m_parmCount; ++target) {
            ParmRow &to = m_parms[target];
            if (to[parmReportID] == targetID && to[parmName] == from[parmName])
                to[parmValue] = from[parmValue];
        }
    }
}

// ------------------------------------------------------------------------------------------ collections

void clsSchedule::NewCollectionItem()
{
    if (m_collCount >= MaxCollections)
        OutOfRange();
    Ensure(m_colls, m_collCount);
    m_collPosition = m_collCount++;
}

void clsSchedule::SetCollectionPosition(int row)
{
    m_collPosition = row;
}

clsSchedule::CollectionRow &clsSchedule::collAt()
{
    if (m_collPosition < 0 || m_collPosition >= MaxCollections)
        OutOfRange();
    Ensure(m_colls, m_collPosition);
    return m_colls[m_collPosition];
}

const clsSchedule::CollectionRow &clsSchedule::collAt() const
{
    static const CollectionRow blank;
    if (m_collPosition < 0 || m_collPosition >= MaxCollections)
        OutOfRange();
    return size_t(m_collPosition) < m_colls.size() ? m_colls[m_collPosition] : blank;
}

QString clsSchedule::CollectionID() const
{
    return collAt().id;
}
void clsSchedule::SetCollectionID(const QString &value)
{
    collAt().id = value;
}
QString clsSchedule::CollectionItem() const
{
    return collAt().item;
}
void clsSchedule::SetCollectionItem(const QString &value)
{
    collAt().item = value;
}

void clsSchedule::CollectionDeleteRow(int row)
{
    if (m_collCount < 2)
        return;
    if (row >= 0 && row < m_collCount) {
        for (int r = row; r + 1 < m_collCount; ++r)
            m_colls[r] = m_colls[r + 1];
    } else if (row < 0) {
        OutOfRange();
    }
    --m_collCount;
    m_colls[m_collCount] = CollectionRow();
}

void clsSchedule::CollectionSwap(int a, int b)
{
    if (a < 0 || a >= MaxCollections || b < 0 || b >= MaxCollections)
        OutOfRange();
    Ensure(m_colls, std::max(a, b));
    std::swap(m_colls[a].item, m_colls[b].item);
}

int clsSchedule::memberRow(const QString &reportID) const
{
    const int row = findRow(reportID);
    if (row >= 0)
        return row;
    // The original scans one row past Count; that row is blank, so only an empty ID finds it.
    if (size_t(m_count) < m_items.size() && m_items[m_count][colReportID] == reportID)
        return m_count;
    return -1;
}

QString clsSchedule::CollectionReport() const
{
    const int row = memberRow(collAt().item);
    return row < 0 ? QStringLiteral("Missing") : m_items[row][colName];
}

QString clsSchedule::CollectionFile() const
{
    const int row = memberRow(collAt().item);
    return row < 0 ? QStringLiteral("Lost Report") : m_items[row][colFile];
}

QString clsSchedule::CollectionNextRun(const QString &reportID) const
{
    const int row = findRow(reportID);
    return row < 0 ? QString() : m_items[row][colNextRun];
}

QString clsSchedule::CollectionDescription(const QString &reportID) const
{
    const int row = findRow(reportID);
    return row < 0 ? QString() : m_items[row][colName];
}

void clsSchedule::CollectionSetReport()
{
    const int row = memberRow(collAt().item);
    if (row < 0)
        return;
    QString &schedule = m_items[row][colSchedule];
    if (schedule != QLatin1String("Y"))
        schedule = QStringLiteral("C");
}
