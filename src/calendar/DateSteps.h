#pragma once
// Clock-time steps on day-count dates, in whole seconds so that they equal parsed or clock moments.

#include <QtGlobal>

namespace DynDates {

// The moment `seconds` later (earlier when negative), on the wall clock: no daylight-saving shifts.
double AddSeconds(double value, qint64 seconds);
// The first of `start` + k x `seconds` (k = 1, 2 ...) that lies strictly after `reference`; the step
// count is worked out at once, so a start long past costs nothing. `seconds` must be positive.
double FirstStepAfter(double start, double reference, qint64 seconds);
// The date of `value` at hour:minute:00; hours and minutes beyond their range roll over.
double AtTime(double value, int hour, int minute);

} // namespace DynDates
