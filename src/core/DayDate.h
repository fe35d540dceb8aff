#pragma once
// Day-count dates: a double counting days from 30 December 1899, the fraction being the time of day.

#include <QDate>
#include <QDateTime>
#include <QString>
#include <optional>

namespace DayDate {

double FromParts(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);
double FromDateTime(const QDateTime &moment);
double FromDate(const QDate &date);
QDate ToDate(double value);
QDateTime ToDateTime(double value);

// The whole day and the time of day, as the original platform splits negative values too.
double DayOf(double value);
double TimeOf(double value);

int Year(double value);
int Month(double value);
int Day(double value);
int Hour(double value);
int Minute(double value);
int Second(double value);

// Calendar arithmetic; the time of day is kept and the day clamps to the month's last day.
double AddMonths(double value, int months);
double AddYears(double value, int years);

// The one date parser: "D-Mon-YYYY" or "YYYY-MM-DD", optionally followed by " H:M" or " H:M:S",
// or a time alone (which lies on day 0). Anything else gives no value.
std::optional<double> Parse(const QString &text);
bool IsDate(const QString &text);

} // namespace DayDate

// "DD-Mon-YYYY" with English month names; empty for a year below 1900.
QString FormatDate(double value);
// "DD-Mon-YYYY HH:MM"; empty for a year below 1900.
QString FormatDateTime(double value);
// 1 Sunday to 7 Saturday.
int Weekday(double value);
// Three-letter English month name, 1 = "Jan".
QString MonthAbbreviation(int month);
