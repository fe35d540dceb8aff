#include "DateSteps.h"

#include "core/DayDate.h"

#include <QDateTime>
#include <algorithm>
#include <cmath>

namespace DynDates {

double AddSeconds(double value, qint64 seconds)
{
    // UTC has no gaps, so the wall time moves by exactly the seconds asked for.
    const QTime time = QTime(0, 0).addSecs(DayDate::Hour(value) * 3600 + DayDate::Minute(value) * 60 +
                                           DayDate::Second(value));
    const QDateTime wall(DayDate::ToDate(value), time, Qt::UTC);
    return DayDate::FromDateTime(wall.addSecs(seconds));
}

double FirstStepAfter(double start, double reference, qint64 seconds)
{
    qint64 steps = std::max<qint64>(1, qint64(std::floor((reference - start) * 86400.0 / double(seconds))));
    while (steps > 1 && AddSeconds(start, (steps - 1) * seconds) > reference)
        --steps;
    while (AddSeconds(start, steps * seconds) <= reference)
        ++steps;
    return AddSeconds(start, steps * seconds);
}

double AtTime(double value, int hour, int minute)
{
    return AddSeconds(DayDate::DayOf(value), qint64(hour) * 3600 + qint64(minute) * 60);
}

} // namespace DynDates
