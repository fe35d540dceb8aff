#include "engine/ValueFormat.h"

#include <QDateTime>
#include <QLocale>
#include <cmath>

namespace Engine {

namespace {

const QLocale &English()
{
    static const QLocale locale(QLocale::English, QLocale::UnitedStates);
    return locale;
}

QString FormatNumber(double number, const QString &pattern)
{
    auto isDigitMark = [](QChar c) { return c == QLatin1Char('#') || c == QLatin1Char('0'); };
    const auto firstMark = std::find_if(pattern.begin(), pattern.end(), isDigitMark);
    const auto lastMark = std::find_if(pattern.rbegin(), pattern.rend(), isDigitMark);
    const qsizetype first = firstMark == pattern.end() ? -1 : firstMark - pattern.begin();
    const qsizetype last = pattern.size() - 1 - (lastMark - pattern.rbegin());
    if (first < 0)
        return PlainText(number);
    const QString prefix = pattern.left(first);
    const QString suffix = pattern.mid(last + 1);
    const QString body = pattern.mid(first, last - first + 1);
    const qsizetype point = body.indexOf(QLatin1Char('.'));
    const int decimals = point < 0 ? 0 : int(body.size() - point - 1);
    if (suffix.contains(QLatin1Char('%')))
        number *= 100;
    QString digits = body.contains(QLatin1Char(',')) ? English().toString(number, 'f', decimals)
                                                     : QString::number(number, 'f', decimals);
    const auto nonZero = [](QChar c) { return c >= QLatin1Char('1') && c <= QLatin1Char('9'); };
    if (digits.startsWith(QLatin1Char('-')) && std::none_of(digits.begin(), digits.end(), nonZero))
        digits.remove(0, 1); // "-0.00" reads as a fault
    return prefix + digits + suffix;
}

} // namespace

bool IsNumberType(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::Double:
    case QMetaType::Float: return true;
    default: return false;
    }
}

bool IsDatePattern(const QString &pattern)
{
    return !pattern.contains(QLatin1Char('#')) && !pattern.contains(QLatin1Char('0')) &&
           (pattern.contains(QLatin1Char('d')) || pattern.contains(QLatin1Char('M')) ||
            pattern.contains(QLatin1Char('y')) || pattern.contains(QLatin1Char('H')));
}

QDateTime MomentOf(const QVariant &value)
{
    if (value.typeId() == QMetaType::QDate)
        return QDateTime(value.toDate(), QTime(0, 0), Qt::UTC);
    if (value.typeId() == QMetaType::QDateTime) {
        const QDateTime moment = value.toDateTime();
        return moment.timeSpec() == Qt::UTC ? moment : QDateTime(moment.date(), moment.time(), Qt::UTC);
    }
    if (value.typeId() != QMetaType::QString)
        return QDateTime();
    const QString text = value.toString().trimmed();
    const QDate date = text.size() >= 10 ? QDate::fromString(text.left(10), Qt::ISODate) : QDate();
    if (!date.isValid() || text.size() == 10)
        return date.isValid() ? QDateTime(date, QTime(0, 0), Qt::UTC) : QDateTime();
    if (text[10] != QLatin1Char(' ') && text[10] != QLatin1Char('T'))
        return QDateTime();
    const QString clock = text.mid(11);
    QTime time = QTime::fromString(clock, QStringLiteral("HH:mm:ss"));
    if (!time.isValid())
        time = QTime::fromString(clock, QStringLiteral("HH:mm"));
    if (!time.isValid())
        time = QTime::fromString(clock, Qt::ISODateWithMs);
    return time.isValid() ? QDateTime(date, time, Qt::UTC) : QDateTime();
}

bool NumberOf(const QVariant &value, double &number)
{
    if (IsNumberType(value)) {
        number = value.toDouble();
        return true;
    }
    if (value.typeId() != QMetaType::QString)
        return false;
    bool ok = false;
    number = value.toString().trimmed().toDouble(&ok);
    return ok;
}

QString PlainText(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool: return value.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    case QMetaType::QDate: return value.toDate().toString(QStringLiteral("yyyy-MM-dd"));
    case QMetaType::QDateTime: return value.toDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    case QMetaType::QTime: return value.toTime().toString(QStringLiteral("HH:mm:ss"));
    case QMetaType::Double:
    case QMetaType::Float: {
        const double number = value.toDouble();
        if (std::isfinite(number) && number == std::trunc(number) && std::abs(number) < 1e15)
            return QString::number(qint64(number));
        return QString::number(number, 'g', 15);
    }
    default: return value.toString();
    }
}

QString FormatValue(const QVariant &value, const QString &pattern)
{
    if (pattern.isEmpty() || value.isNull())
        return PlainText(value);
    if (IsDatePattern(pattern)) {
        const QDateTime moment = MomentOf(value);
        return moment.isValid() ? English().toString(moment, pattern) : PlainText(value);
    }
    double number = 0;
    if (IsNumberType(value) && NumberOf(value, number))
        return FormatNumber(number, pattern);
    return PlainText(value);
}

} // namespace Engine
