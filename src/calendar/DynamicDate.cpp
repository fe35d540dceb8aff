#include "DynamicDate.h"

#include "core/DayDate.h"
#include "core/Numbers.h"
#include "store/clsSchedule.h"

namespace DynDates {

namespace {

struct Keyword
{
    QString key;
    qint16 offset = 0;
};

qint16 ReadOffset(const QString &text)
{
    return Numbers::ToInt16(Numbers::NumericPrefix(text));
}

// The "-" offset is negative because its sign is read with it; a "+" anywhere wins over it.
Keyword SplitOffset(const QString &expression)
{
    Keyword result{expression, 0};
    const qsizetype minus = expression.indexOf(QLatin1Char('-'));
    if (minus >= 0) {
        result.offset = ReadOffset(expression.mid(minus));
        result.key = expression.left(minus);
    }
    const qsizetype plus = expression.indexOf(QLatin1Char('+'));
    if (plus >= 0) {
        result.offset = ReadOffset(expression.mid(plus + 1));
        result.key = expression.left(plus);
    }
    result.key = result.key.toLower();
    return result;
}

double WeekAnchor(const clsSchedule &schedule, double reference)
{
    const double anchor = reference - Weekday(reference) + schedule.Week_Start;
    return anchor > reference ? anchor - 7 : anchor;
}

double FirstOfMonth(double value)
{
    return DayDate::FromParts(DayDate::Year(value), DayDate::Month(value), 1);
}

// Walks the fiscal chain from `start`: 35 days, then 28, then 35 ... The last element on or before
// the reference plus the offset, or the zero date when the first element already lies after it.
double WalkPeriods(double start, double reference, int offset)
{
    double result = 0;
    int counter = 2;
    for (double s = start; s <= reference;) {
        ++counter;
        result = s + offset;
        s += 28;
        if (counter >= 3) {
            s += 7;
            counter = 1;
        }
    }
    return result;
}

double FiscalMonthStart(const clsSchedule &schedule, double reference, int offset)
{
    if (reference < schedule.Period_One)
        return schedule.Year_Start + offset;
    return WalkPeriods(schedule.Period_One + 1, reference, offset);
}

double FiscalMonthEnd(const clsSchedule &schedule, double reference, int offset)
{
    if (reference < schedule.Period_One)
        return schedule.Period_One + offset;
    return WalkPeriods(schedule.Period_One, reference, offset);
}

double MonthStart(const clsSchedule &schedule, double reference, int offset)
{
    if (schedule.Month_Length == 0)
        return FirstOfMonth(reference) + offset;
    if (schedule.Month_Length < 0)
        return 0;
    return FiscalMonthStart(schedule, reference, offset);
}

double MonthEnd(const clsSchedule &schedule, double reference, int offset)
{
    if (schedule.Month_Length == 0)
        return DayDate::AddMonths(FirstOfMonth(reference), 1) - 1 + offset;
    if (schedule.Month_Length < 0)
        return 0;
    return FiscalMonthEnd(schedule, reference, offset);
}

double PeriodOneEnd(clsSchedule &schedule, int offset)
{
    // Calendar months define the first period as the first month of the year, and keep it.
    if (schedule.Month_Length == 0)
        schedule.Period_One = DayDate::AddMonths(schedule.Year_Start, 1) - 1;
    return schedule.Period_One + offset;
}

} // namespace

double DynamicDate(clsSchedule &schedule, double reference, const QString &expression)
{
    const double week = WeekAnchor(schedule, reference);
    const Keyword keyword = SplitOffset(expression);
    const QString &key = keyword.key;
    const int offset = keyword.offset;
    const bool calendarMonths = schedule.Month_Length == 0;

    if (key == QLatin1String("today"))
        return reference + offset;
    if (key == QLatin1String("week.start.ty"))
        return week + offset;
    if (key == QLatin1String("week.end.ty"))
        return week + 6 + offset;
    if (key == QLatin1String("month.start.ty"))
        return MonthStart(schedule, reference, offset);
    if (key == QLatin1String("month.end.ty"))
        return MonthEnd(schedule, reference, offset);
    if (key == QLatin1String("lastmth.start.ty"))
        return calendarMonths ? FirstOfMonth(DayDate::AddMonths(reference, -1)) + offset : 0;
    if (key == QLatin1String("lastmth.end.ty"))
        return calendarMonths ? FirstOfMonth(reference) - 1 + offset : 0;
    if (key == QLatin1String("period1.end.ty"))
        return PeriodOneEnd(schedule, offset);
    if (key == QLatin1String("year.end.ty"))
        return DayDate::AddYears(schedule.Year_Start, 1) - 1 + offset;
    if (key == QLatin1String("year.start.ty"))
        return schedule.Year_Start + offset;
    if (key == QLatin1String("year.start.ly"))
        return DayDate::AddYears(schedule.Year_Start, -1) + offset;
    if (key == QLatin1String("year.end.ly"))
        return schedule.Year_Start - 1 + offset;
    return DayDate::FromParts(1900, 1, 1) + offset;
}

QString DynamicDateText(clsSchedule &schedule, double reference, const QString &expression)
{
    // FormatDate already gives empty text for a year below 1900.
    return FormatDate(DynamicDate(schedule, reference, expression));
}

} // namespace DynDates
