#pragma once
// The present moment. Everything that computes with dates or the time of day asks the current clock,
// so tests can set their own.

#include <QDateTime>

class Clock
{
public:
    virtual ~Clock() = default;
    virtual QDateTime now() const = 0;

    // The clock in use: the system clock unless a test has set another. The caller keeps ownership.
    static const Clock &current();
    static void setCurrent(const Clock *clock);
};

class SystemClock : public Clock
{
public:
    QDateTime now() const override { return QDateTime::currentDateTime(); }
};

// The present moment as a day-count date, its whole day, and the seconds since midnight.
double Now();
double Today();
double SecondsSinceMidnight();
