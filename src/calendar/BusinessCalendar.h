#pragma once
// The working-calendar rules: next working day, next step inside working hours, next business month.

class clsSchedule;

namespace DynDates {

// The first working day on or after `reference` (tomorrow at the soonest when `reference` carries a
// time of day) that Business-Week and the holiday list allow, at the time of day of `d`. A `d` after
// `reference` is only moved off rest days and holidays. Reloads the holiday table.
double NextBusinessDay(clsSchedule &schedule, double d, double reference);
// `d` stepped by BusinessHour-Schedule minutes until it lies after `now`; past today's end of
// business it becomes the next working day at BusinessHour-Start.
double NextBusinessHour(clsSchedule &schedule, double d, double now);
// The run after `d` by Business-Month ("First Day", "Last Day" or a number of days after the end of
// the current month), measured from today's "month.end.ty", at the time of day of `d`.
double NextBusinessMonth(clsSchedule &schedule, double d);

} // namespace DynDates
