#include "NextRun.h"

#include "BusinessCalendar.h"
#include "CustomCalendar.h"
#include "DateSteps.h"

#include "core/Clock.h"
#include "core/DayDate.h"
#include "core/Numbers.h"
#include "store/clsSchedule.h"

#include <optional>

using namespace DynDates;

namespace {

void EndScheduling(clsSchedule &schedule)
{
    schedule.SetSchedule(QStringLiteral("N"));
    schedule.SetNextRun(QString());
}

// `next` moved on by whole steps of `seconds` until it lies strictly after `reference`; a `next`
// already after it stays.
double StepPast(double next, double reference, qint64 seconds)
{
    return next > reference ? next : FirstStepAfter(next, reference, seconds);
}

// Month steps clamp at each month's end, and the clamp carries on from step to step.
double StepMonthsPast(double next, double reference, int months)
{
    while (next <= reference)
        next = DayDate::AddMonths(next, months);
    return next;
}

double LastDayOfNextMonth(double next)
{
    const double today = Today();
    const double firstAfter =
        DayDate::AddMonths(DayDate::FromParts(DayDate::Year(today), DayDate::Month(today), 1), 2);
    return AtTime(firstAfter - 1, DayDate::Hour(next), DayDate::Minute(next));
}

// The next moment by the item's frequency, or nothing when the item has no further run.
std::optional<double> NextByFrequency(clsSchedule &schedule, double next, double reference, qint16 times)
{
    const QString frequency = schedule.Frequency();
    const auto is = [&frequency](const char *name) { return frequency == QLatin1String(name); };
    if (is("H") || is("Hour(s)"))
        return StepPast(next, reference, qint64(times) * 3600);
    if (is("Minute(s)"))
        return StepPast(next, reference, qint64(times) * 60);
    if (is("D") || is("Day(s)"))
        return StepPast(next, reference, qint64(times) * 86400);
    if (is("B") || is("Business Day") || is("Business day"))
        return NextBusinessDay(schedule, next, reference);
    if (is("Business Hour"))
        return NextBusinessHour(schedule, next, Now());
    if (is("Business Month"))
        return NextBusinessMonth(schedule, next);
    if (is("Custom Calendar")) {
        QString path = schedule.CustomCalendarFile();
        const double date = NextCustomCalendarDate(schedule, path, reference);
        schedule.SetCustomCalendarFile(path);
        if (DayDate::Year(date) < 1990)
            return std::nullopt;
        return date;
    }
    if (is("W") || is("Week(s)"))
        return StepPast(next, reference, qint64(Numbers::ToInt16(double(times) * 7)) * 86400);
    if (is("M") || is("Month(s)"))
        return StepMonthsPast(next, reference, times);
    if (is("L") || is("Last day of month"))
        return LastDayOfNextMonth(next);
    return std::nullopt;
}

} // namespace

void SaveNextTime(clsSchedule &schedule, double reference)
{
    const qint16 times = Numbers::ToInt16(Numbers::NumericPrefix(schedule.FreqTimes()));
    // A negative count would make the counting loops run for ever; it ends the item like 0 does.
    if (times <= 0) {
        EndScheduling(schedule);
        return;
    }
    const std::optional<double> next = DayDate::Parse(schedule.NextRun());
    if (!next)
        return;
    if (const std::optional<double> moved = NextByFrequency(schedule, *next, reference, times))
        schedule.SetNextRun(FormatDateTime(*moved));
    else
        EndScheduling(schedule);
}

double NextReportRun(clsSchedule &schedule)
{
    double best = Today() + 365;
    bool found = false;
    for (int row = 0; row < schedule.Count(); ++row) {
        const QString text = schedule.Cell(row, clsSchedule::colNextRun);
        const std::optional<double> date = text.isEmpty() ? std::nullopt : DayDate::Parse(text);
        if (!date)
            continue;
        found = true;
        if (*date < best) {
            best = *date;
            schedule.NextItemIndex = qint16(row);
        }
    }
    return found ? best : Today() + 1;
}

double BusinessEndToday(const clsSchedule &schedule)
{
    return AtTime(Today(), schedule.BusinessHour_End.Hour, schedule.BusinessHour_End.Minute);
}
