#pragma once
// The front door for date values typed as text: a date, a dynamic-date keyword or "date(y, m, d ...)".

#include <QString>

class clsSchedule;

namespace DynDates {

// A date as it stands; empty text is today; a keyword is resolved from today plus Today-Adjust;
// "date(year, month, day)" or "date(year, month, day, hour, minute, second)" is built. Anything else
// gives 1 January 1200, the mark of unreadable text.
double EvaluateDate(clsSchedule &schedule, const QString &text);

} // namespace DynDates
