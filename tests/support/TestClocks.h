#pragma once
// Clocks for tests: a fixed moment for code that does not wait, and real time moved by an offset
// for code that does.

#include "core/Clock.h"

class FixedClock : public Clock
{
public:
    explicit FixedClock(const QDateTime &moment) : m_moment(moment) {}
    QDateTime now() const override { return m_moment; }
    void set(const QDateTime &moment) { m_moment = moment; }
    void advanceSeconds(qint64 seconds) { m_moment = m_moment.addSecs(seconds); }

private:
    QDateTime m_moment;
};

class OffsetClock : public Clock
{
public:
    explicit OffsetClock(const QDateTime &startAt);
    QDateTime now() const override;
    void advanceSeconds(qint64 seconds) { m_offsetMs += seconds * 1000; }

private:
    qint64 m_offsetMs;
};

// Makes a clock current for the life of this guard.
class ClockGuard
{
public:
    explicit ClockGuard(const Clock &clock) { Clock::setCurrent(&clock); }
    ~ClockGuard() { Clock::setCurrent(nullptr); }
};
