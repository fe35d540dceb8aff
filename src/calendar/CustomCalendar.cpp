#include "CustomCalendar.h"

#include "ListFile.h"

#include "core/CommonFile.h"
#include "core/Clock.h"
#include "core/DayDate.h"
#include "core/QorloError.h"
#include "core/WholeFile.h"
#include "store/clsSchedule.h"

#include <vector>

namespace DynDates {

namespace {

double Unusable()
{
    return DayDate::FromParts(1900, 1, 1);
}

// A value as a calendar entry: a date as it stands, else through its day name; only years after 1900.
std::optional<double> CalendarEntry(const QString &value, double reference)
{
    const std::optional<double> parsed = DayDate::Parse(value);
    const double date = parsed ? *parsed : ExpandDayName(value, reference);
    if (DayDate::Year(date) <= 1900)
        return std::nullopt;
    return date;
}

std::vector<double> ReadCalendar(const QString &path, double reference)
{
    std::vector<double> dates;
    for (const QString &value : ReadListValues(path)) {
        const std::optional<double> date = CalendarEntry(value, reference);
        if (!date)
            continue;
        if (dates.size() >= CustomCalendarCapacity)
            throw QorloError(QorloError::OutOfRange);
        dates.push_back(*date);
    }
    return dates;
}

} // namespace

double NextCustomCalendarDate(const clsSchedule &schedule, QString &path, double reference)
{
    if (path.isEmpty())
        return 0;
    path = CommonFile::CompletePath(schedule.AppPath, path);
    if (!WholeFile::IsWholeFile(path))
        return Unusable();
    const std::vector<double> dates = ReadCalendar(path, reference);
    if (dates.empty())
        return Unusable();
    // The earliest entry after the reference; the order of the file does not matter, nor do repeats.
    double result = DayDate::FromParts(DayDate::Year(Today()) + 20, 12, 31);
    for (double date : dates) {
        if (date > reference && date < result)
            result = date;
    }
    return result;
}

double ExpandDayName(const QString &text, double reference)
{
    static const char *const names[] = {"sunday",   "monday", "tuesday", "wednesday",
                                        "thursday", "friday", "saturday"};
    static const int dayNumbers[] = {1, 2, 3, 4, 5, 6, 0};
    QString expanded = text.toLower();
    const double base = reference - Weekday(reference);
    for (int i = 0; i < 7; ++i) {
        const QLatin1String name(names[i]);
        const qsizetype at = expanded.indexOf(name);
        if (at < 0)
            continue;
        double date = base + dayNumbers[i];
        if (date < reference)
            date += 7;
        expanded.replace(at, name.size(), FormatDate(date));
    }
    return DayDate::Parse(expanded).value_or(Unusable());
}

} // namespace DynDates
