#pragma once
// Date keywords such as "month.end.ty+1", resolved by the schedule's dynamic-date settings.

#include <QString>

class clsSchedule;

namespace DynDates {

// The date of `expression` seen from `reference`. An unknown keyword gives 1 January 1900 plus the
// offset. Resolving "period1.end.ty" with calendar months stores Period-One on the schedule.
// An offset outside 16 bits raises the overflow error.
double DynamicDate(clsSchedule &schedule, double reference, const QString &expression);
// DynamicDate as "DD-Mon-YYYY", empty for a year below 1900.
QString DynamicDateText(clsSchedule &schedule, double reference, const QString &expression);

} // namespace DynDates
