#include "MailWait.h"

#include "core/Clock.h"

namespace {

constexpr float kSecondsPerDay = 86400.0f;

} // namespace

MailDeadline::MailDeadline(qint32 seconds) : m_start(float(SecondsSinceMidnight()))
{
    m_end = m_start + float(seconds);
    if (m_end >= kSecondsPerDay)
        m_end -= kSecondsPerDay;
    m_timer.start();
}

bool MailDeadline::Passed() const
{
    return m_start + float(m_timer.elapsed()) / 1000.0f >= m_end;
}
