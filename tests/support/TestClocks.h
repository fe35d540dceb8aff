#pragma once
// Clocks for tests: a fixed moment for code that does not wait, and real time moved by an offset
// for code that does; and dates in their short forms.

#include "core/Clock.h"
#include "core/DayDate.h"

#include <QStringList>

// The day number of a moment.
inline double D(int year, int month, int day, int hour = 0, int minute = 0, int second = 0)
{
    return DayDate::FromParts(year, month, day, hour, minute, second);
}

// `count` consecutive days from `first`, as "DD-Mon-YYYY" texts.
inline QStringList ConsecutiveDays(double first, int count)
{
    QStringList days;
    for (int i = 0; i < count; ++i)
        days.append(FormatDate(first + i));
    return days;
}

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
