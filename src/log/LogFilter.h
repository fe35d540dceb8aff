#pragma once
// The rows of the run log that the log viewer shows under each of its filters.

#include <QList>
#include <QString>

class clsLog;

namespace LogFilter {

// The viewer's filters, by their stored numbers.
enum Filter { AllReports = 0, CurrentReport, Today, Yesterday, ThisWeek, PriorSevenDays };
constexpr int FilterCount = 6;

// The rows 0 to Count - 1 that pass the filter, "DEL" rows never. `reportID` is the item at the
// schedule's cursor (filter 1, nothing with none); `today` the current date with no time.
QList<int> Rows(const clsLog &log, int filter, const QString &reportID, double today);

} // namespace LogFilter
