#pragma once
// Turns a record value into text: plainly, or by a column's number pattern ("#,##0.00") or date pattern
// ("dd-MMM-yyyy").

#include "engine/Summary.h"

#include <QDateTime>
#include <QString>
#include <QVariant>

namespace Engine {

// The plain text of a value: numbers without needless decimals, dates as yyyy-MM-dd, booleans True/False.
QString PlainText(const QVariant &value);
// The value by the pattern; an empty pattern gives the plain text. Text that holds an ISO date takes a
// date pattern too, since SQLite keeps dates as text.
QString FormatValue(const QVariant &value, const QString &pattern);
// A summary's value by a column's pattern: a count or a share is no amount of the column's kind, so
// only the other summaries take the pattern; a share shows as "12.5%".
QString SummaryText(SummaryFunction function, const QVariant &value, const QString &pattern);
// True for a pattern of date letters (d, M, y, H) rather than digits (#, 0).
bool IsDatePattern(const QString &pattern);
// A date, a date and time, or text in the form yyyy-MM-dd[ HH:mm[:ss]] as a moment without a time
// zone (UTC), so that comparing and formatting never consult the local zone; else an invalid moment.
QDateTime MomentOf(const QVariant &value);
// True for a value of one of the numeric types (integers of any width, floating point).
bool IsNumberType(const QVariant &value);
// The value as a number when it is one or its text reads as one.
bool NumberOf(const QVariant &value, double &number);
// Negative, zero or positive as `a` comes before, with or after `b` in a sort: nulls first, numbers by
// number, dates by date (text in the form yyyy-MM-dd too), texts letter by letter.
int CompareValues(const QVariant &a, const QVariant &b);

} // namespace Engine
