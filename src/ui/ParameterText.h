#pragma once
// The text form in which the parameter editor stores a report parameter's value: dates as "Date(...)"
// and "DateTime(...)", dynamic dates as a keyword with a day adjustment, several values joined by "|".

#include <QDate>
#include <QString>
#include <QStringList>

namespace ParameterText {

// The entries of the dynamic-date list: an empty first entry for a fixed date, then the keywords.
QStringList DynamicDateEntries();

// "Date(yyyy,MM,dd)".
QString DateValue(const QDate &date);
// "DateTime(yyyy,MM,dd,hour,minute,0)".
QString DateTimeValue(const QDate &date, int hour, int minute);
// The adjustment as stored behind a keyword: "" for 0, "+N" for a positive and "-N" for a negative
// number of days.
QString Adjustment(qint16 days);
// The days typed into the adjustment field: empty text is 0; text that is no number raises the type
// error (13), a number beyond 16 bits the overflow error (6).
qint16 AdjustmentDays(const QString &typed);

// A stored date value split, in small letters, at its first "+" or, failing that, its first "-": the
// keyword before and the adjustment from there on ("+3", "-1", or empty).
struct DynamicParts
{
    QString keyword;
    QString adjustment;
};
DynamicParts SplitDynamic(const QString &value);
// The index in DynamicDateEntries() of the first entry that equals `keyword` in small letters; -1 for
// none. The empty first entry never matches: an empty value is a fixed date.
int DynamicEntryIndex(const QString &keyword);

// The name of a value type of the engine, for the note on a parameter that has no editor.
QString TypeName(int valueType);

} // namespace ParameterText
