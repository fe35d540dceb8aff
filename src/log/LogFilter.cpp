#include "LogFilter.h"

#include "clsLog.h"

#include "core/DayDate.h"

namespace LogFilter {

namespace {

// Whether a start date passes a date filter; a start that is no date passes none.
bool DateMatches(int filter, const QString &start, double today)
{
    const std::optional<double> date = DayDate::Parse(start);
    if (!date)
        return false;
    switch (filter) {
    case Today: return DayDate::DayOf(*date) == today;
    case Yesterday: return DayDate::DayOf(*date) == today - 1;
    // One day further back than the web page's week.
    case ThisWeek: return *date >= today - Weekday(today);
    case PriorSevenDays: return *date >= today - 7;
    default: return false;
    }
}

} // namespace

QList<int> Rows(const clsLog &log, int filter, const QString &reportID, double today)
{
    QList<int> rows;
    rows.reserve(log.Count());
    for (int row = 0; row < log.Count(); ++row) {
        const QString id = log.CellAt(row, clsLog::ColReportID);
        if (id == QLatin1String("DEL"))
            continue;
        bool shown = filter == AllReports;
        if (filter == CurrentReport)
            shown = !reportID.isEmpty() && id == reportID;
        else if (filter != AllReports)
            shown = DateMatches(filter, log.CellAt(row, clsLog::ColLogDate), today);
        if (shown)
            rows.append(row);
    }
    return rows;
}

} // namespace LogFilter
