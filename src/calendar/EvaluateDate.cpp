#include "EvaluateDate.h"

#include "DateSteps.h"
#include "DynamicDate.h"

#include "core/Clock.h"
#include "core/DayDate.h"
#include "core/Numbers.h"
#include "core/QorloError.h"
#include "store/clsSchedule.h"

namespace DynDates {

namespace {

double Unreadable()
{
    return DayDate::FromParts(1200, 1, 1);
}

qint16 NumberAt(const QString &text, qsizetype from, qsizetype to = -1)
{
    const QString part = to < 0 ? text.mid(from) : text.mid(from, to - from);
    return Numbers::ToInt16(Numbers::NumericPrefix(part));
}

// A date from its parts: years 0..29 are 2000..2029 and 30..99 are 1930..1999, a month or day beyond
// its range rolls on into the following months, and a result outside the years 100..9999 is an
// invalid call.
double BuildDate(int year, int month, int day)
{
    if (year >= 0 && year < 100)
        year += year < 30 ? 2000 : 1900;
    if (year < 100 || year > 9999)
        throw QorloError(QorloError::InvalidCall);
    const double result = DayDate::AddMonths(DayDate::FromParts(year, 1, 1), month - 1) + (day - 1);
    if (DayDate::Year(result) < 100 || DayDate::Year(result) > 9999)
        throw QorloError(QorloError::InvalidCall);
    return result;
}

double DateCall(const QString &text)
{
    const qsizetype open = text.indexOf(QLatin1Char('('));
    const qsizetype comma1 = text.indexOf(QLatin1Char(','));
    const qsizetype comma2 = comma1 < 0 ? -1 : text.indexOf(QLatin1Char(','), comma1 + 1);
    qsizetype dayEnd = text.indexOf(QLatin1Char(')'));
    const qsizetype comma3 = comma2 < 0 ? -1 : text.indexOf(QLatin1Char(','), comma2 + 1);
    int hour = 0, minute = 0;
    if (comma3 >= 0) {
        const qsizetype comma4 = text.indexOf(QLatin1Char(','), comma3 + 1);
        const qsizetype comma5 = comma4 < 0 ? -1 : text.indexOf(QLatin1Char(','), comma4 + 1);
        if (comma5 < 0)
            return Unreadable();
        hour = NumberAt(text, comma3 + 1);
        minute = NumberAt(text, comma4 + 1);
        dayEnd = comma3;
    }
    if (open < 0 || comma2 < 0 || dayEnd < 0)
        return Unreadable();
    const double date = BuildDate(NumberAt(text, open + 1, comma1), NumberAt(text, comma1 + 1, comma2),
                                  NumberAt(text, comma2 + 1, dayEnd));
    return AtTime(date, hour, minute);
}

} // namespace

double EvaluateDate(clsSchedule &schedule, const QString &text)
{
    if (const std::optional<double> date = DayDate::Parse(text))
        return *date;
    if (text.isEmpty())
        return Today();
    const QString lower = text.toLower();
    if (text.contains(QLatin1Char('.')) || lower.startsWith(QLatin1String("today")))
        return DynamicDate(schedule, Today() + schedule.Today_Adjust, text);
    if (lower.startsWith(QLatin1String("date")))
        return DateCall(text);
    return Unreadable();
}

} // namespace DynDates
