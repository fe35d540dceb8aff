#include "DayDate.h"

#include <QRegularExpression>
#include <cmath>

namespace {

const QDate &Epoch()
{
    static const QDate epoch(1899, 12, 30);
    return epoch;
}

const QLatin1StringView kMonths("JanFebMarAprMayJunJulAugSepOctNovDec");

// Whole seconds of the time of day, rounded so that 10:30 stored as 10:29:59.9999 reads as 10:30;
// a time that rounds up to midnight belongs to the next day (see ToDate).
int SecondsOfDay(double value)
{
    return int(std::llround(DayDate::TimeOf(value) * 86400.0) % 86400);
}

double Combine(qint64 days, double time)
{
    return days >= 0 ? double(days) + time : double(days) - time;
}

int MonthFromName(const QString &name)
{
    for (int m = 1; m <= 12; ++m) {
        if (name.compare(kMonths.mid((m - 1) * 3, 3), Qt::CaseInsensitive) == 0)
            return m;
    }
    return 0;
}

std::optional<double> ParseTime(const QString &hours, const QString &minutes, const QString &seconds)
{
    const int h = hours.toInt(), m = minutes.toInt(), s = seconds.isEmpty() ? 0 : seconds.toInt();
    if (h > 23 || m > 59 || s > 59)
        return std::nullopt;
    return (h * 3600 + m * 60 + s) / 86400.0;
}

} // namespace

namespace DayDate {

double FromParts(int year, int month, int day, int hour, int minute, int second)
{
    const QDate date(year, month, day);
    return Combine(Epoch().daysTo(date), (hour * 3600 + minute * 60 + second) / 86400.0);
}

double FromDate(const QDate &date)
{
    return double(Epoch().daysTo(date));
}

double FromDateTime(const QDateTime &moment)
{
    const QTime t = moment.time();
    return Combine(Epoch().daysTo(moment.date()),
                   (t.hour() * 3600 + t.minute() * 60 + t.second() + t.msec() / 1000.0) / 86400.0);
}

double DayOf(double value)
{
    return std::trunc(value);
}

double TimeOf(double value)
{
    return std::fabs(value - std::trunc(value));
}

QDate ToDate(double value)
{
    // Rounding the time may carry into the next day (23:59:59.9999).
    const qint64 days = qint64(DayOf(value));
    const int seconds = int(std::llround(TimeOf(value) * 86400.0));
    return Epoch().addDays(days + (seconds >= 86400 ? (days >= 0 ? 1 : -1) : 0));
}

QDateTime ToDateTime(double value)
{
    return QDateTime(ToDate(value), QTime(0, 0).addSecs(SecondsOfDay(value)));
}

int Year(double value)
{
    return ToDate(value).year();
}
int Month(double value)
{
    return ToDate(value).month();
}
int Day(double value)
{
    return ToDate(value).day();
}
int Hour(double value)
{
    return SecondsOfDay(value) / 3600;
}
int Minute(double value)
{
    return SecondsOfDay(value) / 60 % 60;
}
int Second(double value)
{
    return SecondsOfDay(value) % 60;
}

double AddMonths(double value, int months)
{
    return Combine(Epoch().daysTo(ToDate(value).addMonths(months)), TimeOf(value));
}

double AddYears(double value, int years)
{
    return Combine(Epoch().daysTo(ToDate(value).addYears(years)), TimeOf(value));
}

std::optional<double> Parse(const QString &text)
{
    static const QRegularExpression named(
        QStringLiteral("^(\\d{1,2})-([A-Za-z]{3})-(\\d{4})(?: (\\d{1,2}):(\\d{1,2})(?::(\\d{1,2}))?)?$"));
    static const QRegularExpression iso(
        QStringLiteral("^(\\d{4})-(\\d{1,2})-(\\d{1,2})(?: (\\d{1,2}):(\\d{1,2})(?::(\\d{1,2}))?)?$"));
    static const QRegularExpression timeOnly(QStringLiteral("^(\\d{1,2}):(\\d{1,2})(?::(\\d{1,2}))?$"));

    const QString trimmed = text.trimmed();
    QDate date;
    QRegularExpressionMatch match = named.match(trimmed);
    if (match.hasMatch()) {
        date = QDate(match.captured(3).toInt(), MonthFromName(match.captured(2)), match.captured(1).toInt());
    } else if ((match = iso.match(trimmed)).hasMatch()) {
        date = QDate(match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt());
    } else if ((match = timeOnly.match(trimmed)).hasMatch()) {
        return ParseTime(match.captured(1), match.captured(2), match.captured(3));
    } else {
        return std::nullopt;
    }
    if (!date.isValid())
        return std::nullopt;
    std::optional<double> time = 0.0;
    if (match.hasCaptured(4))
        time = ParseTime(match.captured(4), match.captured(5), match.captured(6));
    if (!time)
        return std::nullopt;
    return Combine(Epoch().daysTo(date), *time);
}

bool IsDate(const QString &text)
{
    return Parse(text).has_value();
}

} // namespace DayDate

QString MonthAbbreviation(int month)
{
    return kMonths.mid((month - 1) * 3, 3).toString();
}

QString FormatDate(double value)
{
    const QDate date = DayDate::ToDate(value);
    if (date.year() < 1900)
        return QString();
    return QStringLiteral("%1-%2-%3")
        .arg(date.day(), 2, 10, QLatin1Char('0'))
        .arg(MonthAbbreviation(date.month()))
        .arg(date.year(), 4, 10, QLatin1Char('0'));
}

QString FormatDateTime(double value)
{
    const QString day = FormatDate(value);
    if (day.isEmpty())
        return day;
    return day + QStringLiteral(" %1:%2")
                     .arg(DayDate::Hour(value), 2, 10, QLatin1Char('0'))
                     .arg(DayDate::Minute(value), 2, 10, QLatin1Char('0'));
}

int Weekday(double value)
{
    return DayDate::ToDate(value).dayOfWeek() % 7 + 1;
}
