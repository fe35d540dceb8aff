#include "ParameterText.h"

#include "core/Numbers.h"
#include "engine/Codes.h"

namespace ParameterText {

QStringList DynamicDateEntries()
{
    // "LastMth.Start.TY" stands twice; a stored value finds the first.
    return {QString(),
            QStringLiteral("Today"),
            QStringLiteral("Week.Start.TY"),
            QStringLiteral("Week.End.TY"),
            QStringLiteral("Month.Start.TY"),
            QStringLiteral("Month.End.TY"),
            QStringLiteral("LastMth.Start.TY"),
            QStringLiteral("LastMth.End.TY"),
            QStringLiteral("LastMth.Start.TY"),
            QStringLiteral("Year.Start.TY"),
            QStringLiteral("Year.End.TY"),
            QStringLiteral("Year.Start.LY"),
            QStringLiteral("Year.End.LY"),
            QStringLiteral("Period1.Start.TY")};
}

QString DateValue(const QDate &date)
{
    return QStringLiteral("Date(") + date.toString(QStringLiteral("yyyy,MM,dd")) + QLatin1Char(')');
}

QString DateTimeValue(const QDate &date, int hour, int minute)
{
    return QStringLiteral("DateTime(") + date.toString(QStringLiteral("yyyy,MM,dd")) + QLatin1Char(',') +
           QString::number(hour) + QLatin1Char(',') + QString::number(minute) + QStringLiteral(",0)");
}

QString Adjustment(qint16 days)
{
    if (days == 0)
        return QString();
    return days > 0 ? QStringLiteral("+") + QString::number(days) : QString::number(days);
}

qint16 AdjustmentDays(const QString &typed)
{
    return typed.trimmed().isEmpty() ? 0 : Numbers::TextToInt16(typed);
}

DynamicParts SplitDynamic(const QString &value)
{
    const QString text = value.toLower();
    qsizetype at = text.indexOf(QLatin1Char('+'));
    if (at < 0)
        at = text.indexOf(QLatin1Char('-'));
    if (at < 0)
        return {text, QString()};
    return {text.left(at), text.mid(at)};
}

int DynamicEntryIndex(const QString &keyword)
{
    if (keyword.isEmpty())
        return -1;
    const QStringList entries = DynamicDateEntries();
    for (int index = 1; index < entries.size(); ++index) {
        if (entries.at(index).toLower() == keyword)
            return index;
    }
    return -1;
}

QString TypeName(int valueType)
{
    switch (valueType) {
    case Engine::NumberField: return QStringLiteral("Number");
    case Engine::CurrencyField: return QStringLiteral("Currency");
    case Engine::BooleanField: return QStringLiteral("Boolean");
    case Engine::DateField: return QStringLiteral("Date");
    case Engine::TimeField: return QStringLiteral("Time");
    case Engine::StringField: return QStringLiteral("String");
    case Engine::DateTimeField: return QStringLiteral("DateTime");
    default: break;
    }
    return QStringLiteral("Unknown (") + QString::number(valueType) + QLatin1Char(')');
}

} // namespace ParameterText
