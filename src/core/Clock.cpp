#include "Clock.h"

#include "DayDate.h"

#include <cmath>

namespace {

const Clock *g_clock = nullptr;

} // namespace

const Clock &Clock::current()
{
    static const SystemClock system;
    return g_clock ? *g_clock : system;
}

void Clock::setCurrent(const Clock *clock)
{
    g_clock = clock;
}

double Now()
{
    return DayDate::FromDateTime(Clock::current().now());
}

double Today()
{
    return std::floor(Now());
}

double SecondsSinceMidnight()
{
    const QTime t = Clock::current().now().time();
    return t.msecsSinceStartOfDay() / 1000.0;
}
