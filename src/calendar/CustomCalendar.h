#pragma once
// An item's own calendar: a list file of dates, dates with times and day names such as "Monday 08:30".

#include <QString>

class clsSchedule;

namespace DynDates {

// Room for index 0 to 3000.
constexpr int CustomCalendarCapacity = 3001;

// The first calendar entry strictly after `reference`; 31 December twenty years ahead when none is.
// An empty `path` gives the zero date; a missing file or one without usable entries 1 January 1900.
// `path` is completed with the application folder. A 3002nd entry raises the subscript error.
double NextCustomCalendarDate(const clsSchedule &schedule, QString &path, double reference);
// `text` with its first day name ("sunday" ... "saturday", any case) replaced by the date of that
// weekday on or after `reference`, then read as a date; 1 January 1900 when it does not read.
double ExpandDayName(const QString &text, double reference);

} // namespace DynDates
