#include "BusinessCalendar.h"

#include "DateSteps.h"
#include "DynamicDate.h"
#include "Holidays.h"
#include "NextRun.h"

#include "core/Clock.h"
#include "core/DayDate.h"
#include "core/Numbers.h"
#include "store/clsSchedule.h"

#include <cmath>

namespace DynDates {

namespace {

// Days to move `day` forward because the business week rests on it.
int RestDaysAhead(const QString &businessWeek, double day)
{
    const int weekday = Weekday(day);
    if (businessWeek.isEmpty() || businessWeek == QLatin1String("Monday-Friday"))
        return weekday == 1 ? 1 : weekday == 7 ? 2 : 0;
    if (businessWeek == QLatin1String("Monday-Saturday"))
        return weekday == 1 ? 1 : 0;
    return 0;
}

// The time of `d` on the day of `day`.
double WithTimeOf(double day, double d)
{
    return DayDate::DayOf(day) + DayDate::TimeOf(d);
}

} // namespace

double NextBusinessDay(clsSchedule &schedule, double d, double reference)
{
    double day = DayDate::DayOf(d);
    if (day < reference)
        day = std::ceil(reference); // the first whole day that is not earlier than the reference
    LoadHolidays(schedule);
    for (;;) {
        day += RestDaysAhead(schedule.Business_Week, day);
        if (!IsHoliday(day))
            break;
        day += 1;
    }
    return WithTimeOf(day, d);
}

double NextBusinessHour(clsSchedule &schedule, double d, double now)
{
    const int minutes = schedule.BusinessHour_Schedule < 1 ? 60 : schedule.BusinessHour_Schedule;
    const double next = FirstStepAfter(d, now, qint64(minutes) * 60);
    if (next <= BusinessEndToday(schedule))
        return next;
    const double day = NextBusinessDay(schedule, d, now);
    return AtTime(day, schedule.BusinessHour_Start.Hour, schedule.BusinessHour_Start.Minute);
}

double NextBusinessMonth(clsSchedule &schedule, double d)
{
    const double today = Today();
    const double monthEnd = DynamicDate(schedule, today, QStringLiteral("month.end.ty"));
    if (Numbers::IsNumeric(schedule.Business_Month)) {
        const qint16 days = Numbers::ToInt16(Numbers::NumericPrefix(schedule.Business_Month));
        return WithTimeOf(monthEnd + days, d);
    }
    if (schedule.Business_Month == QLatin1String("Last Day")) {
        if (monthEnd == today)
            return WithTimeOf(DynamicDate(schedule, today + 3, QStringLiteral("month.end.ty")), d);
        return WithTimeOf(monthEnd, d);
    }
    return WithTimeOf(monthEnd + 1, d);
}

} // namespace DynDates
