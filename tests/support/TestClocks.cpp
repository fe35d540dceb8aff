#include "TestClocks.h"

OffsetClock::OffsetClock(const QDateTime &startAt) : m_offsetMs(QDateTime::currentDateTime().msecsTo(startAt))
{
}

QDateTime OffsetClock::now() const
{
    return QDateTime::currentDateTime().addMSecs(m_offsetMs);
}
