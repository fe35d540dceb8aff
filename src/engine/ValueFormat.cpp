#include "engine/ValueFormat.h"

#include <QHash>
#include <QDateTime>
#include <QLocale>
#include <charconv>
#include <cmath>

namespace Engine {

namespace {

const QLocale &English()
{
    static const QLocale locale(QLocale::English, QLocale::UnitedStates);
    return locale;
}

// Digits of a whole number with the thousands separated by commas.
void AppendGrouped(QString &out, quint64 whole, bool grouped)
{
    const QString digits = QString::number(whole);
    for (qsizetype i = 0; i < digits.size(); ++i) {
        if (grouped && i > 0 && (digits.size() - i) % 3 == 0)
            out += QLatin1Char(',');
        out += digits[i];
    }
}

// The number with `decimals` places, halves rounded away from zero as QLocale does, without going
// through its general conversion where the number allows: this runs for every cell of an export.
QString FixedDigits(double number, int decimals, bool grouped)
{
    static constexpr double Powers[] = {1, 10, 100, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
    const double scaled = decimals < 10 ? number * Powers[decimals] : 0;
    const bool exact = decimals < 10 && std::fma(number, Powers[decimals], -scaled) == 0;
    const double fraction = std::abs(scaled - std::trunc(scaled));
    // Beyond 2^53 or close to a half that the product may have rounded to, the general way is exact.
    if (decimals >= 10 || !(std::abs(scaled) < 9007199254740992.0) ||
        (!exact && std::abs(fraction - 0.5) < 1e-6))
        return grouped ? English().toString(number, 'f', decimals) : QString::number(number, 'f', decimals);
    const auto units = quint64(std::round(std::abs(scaled)));
    const auto scale = quint64(Powers[decimals]);
    QString out;
    if (number < 0 && units != 0)
        out += QLatin1Char('-');
    AppendGrouped(out, units / scale, grouped);
    if (decimals > 0)
        out += QLatin1Char('.') + QString::number(units % scale).rightJustified(decimals, QLatin1Char('0'));
    return out;
}

// A number pattern taken apart: text before and after the digits, decimals, thousands, per cent.
struct NumberPattern
{
    bool digits = false; // false: no digit marks, the number shows plainly
    QString prefix;
    QString suffix;
    int decimals = 0;
    bool grouped = false;
    bool percent = false;
};

NumberPattern ParseNumberPattern(const QString &pattern)
{
    auto isDigitMark = [](QChar c) { return c == QLatin1Char('#') || c == QLatin1Char('0'); };
    const auto firstMark = std::find_if(pattern.begin(), pattern.end(), isDigitMark);
    const auto lastMark = std::find_if(pattern.rbegin(), pattern.rend(), isDigitMark);
    NumberPattern parsed;
    if (firstMark == pattern.end())
        return parsed;
    const qsizetype first = firstMark - pattern.begin();
    const qsizetype last = pattern.size() - 1 - (lastMark - pattern.rbegin());
    const QString body = pattern.mid(first, last - first + 1);
    const qsizetype point = body.indexOf(QLatin1Char('.'));
    parsed.digits = true;
    parsed.prefix = pattern.left(first);
    parsed.suffix = pattern.mid(last + 1);
    parsed.decimals = point < 0 ? 0 : int(body.size() - point - 1);
    parsed.grouped = body.contains(QLatin1Char(','));
    parsed.percent = parsed.suffix.contains(QLatin1Char('%'));
    return parsed;
}

// Patterns are few and formatting runs for every cell of an export: each is taken apart once.
const NumberPattern &NumberPatternOf(const QString &pattern)
{
    static QHash<QString, NumberPattern> parsed;
    auto found = parsed.constFind(pattern);
    if (found == parsed.constEnd())
        found = parsed.insert(pattern, ParseNumberPattern(pattern));
    return *found;
}

QString FormatNumber(double number, const QString &pattern)
{
    const NumberPattern &parsed = NumberPatternOf(pattern);
    if (!parsed.digits)
        return PlainText(number);
    QString digits = FixedDigits(parsed.percent ? number * 100 : number, parsed.decimals, parsed.grouped);
    const auto nonZero = [](QChar c) { return c >= QLatin1Char('1') && c <= QLatin1Char('9'); };
    if (digits.startsWith(QLatin1Char('-')) && std::none_of(digits.begin(), digits.end(), nonZero))
        digits.remove(0, 1); // "-0.00" reads as a fault
    return parsed.prefix + digits + parsed.suffix;
}

// Records repeat their dates, and formatting one by a pattern takes long: the last few are kept.
QString FormatMoment(const QDateTime &moment, const QString &pattern)
{
    static QHash<std::pair<QString, qint64>, QString> recent;
    const std::pair<QString, qint64> key{pattern, moment.toMSecsSinceEpoch()};
    const auto found = recent.constFind(key);
    if (found != recent.constEnd())
        return *found;
    if (recent.size() >= 4096)
        recent.clear();
    return recent.insert(key, English().toString(moment, pattern)).value();
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

int CompareValues(const QVariant &a, const QVariant &b)
{
    if (a.isNull() || b.isNull())
        return int(b.isNull()) - int(a.isNull());
    double x = 0;
    double y = 0;
    if (IsNumberType(a) && IsNumberType(b) && NumberOf(a, x) && NumberOf(b, y))
        return x < y ? -1 : (y < x ? 1 : 0);
    const QDateTime p = MomentOf(a);
    const QDateTime q = MomentOf(b);
    if (p.isValid() && q.isValid())
        return p < q ? -1 : (q < p ? 1 : 0);
    if (a.typeId() == QMetaType::Bool && b.typeId() == QMetaType::Bool)
        return int(a.toBool()) - int(b.toBool());
    return PlainText(a).compare(PlainText(b));
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
        // Fifteen significant digits hide the binary noise; in the common range without an exponent,
        // where the standard library writes them faster than the general conversion.
        char digits[32];
        const auto written =
            std::to_chars(digits, digits + sizeof digits, number, std::chars_format::general, 15);
        if (std::abs(number) >= 1e-4 && std::abs(number) < 1e15 && written.ec == std::errc())
            return QString::fromLatin1(digits, written.ptr - digits);
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
        // A date kept as text (SQLite's) is looked up by its text before it is read as a date.
        static QHash<std::pair<QString, QString>, QString> byText;
        const bool text = value.typeId() == QMetaType::QString;
        const std::pair<QString, QString> key{pattern, text ? value.toString() : QString()};
        if (const auto found = byText.constFind(key); text && found != byText.constEnd())
            return *found;
        const QDateTime moment = MomentOf(value);
        const QString formatted = moment.isValid() ? FormatMoment(moment, pattern) : PlainText(value);
        if (text && byText.size() < 4096)
            byText.insert(key, formatted);
        return formatted;
    }
    double number = 0;
    if (IsNumberType(value) && NumberOf(value, number))
        return FormatNumber(number, pattern);
    return PlainText(value);
}

QString SummaryText(SummaryFunction function, const QVariant &value, const QString &pattern)
{
    switch (function) {
    case SummaryFunction::Count:
    case SummaryFunction::DistinctCount: return PlainText(value);
    case SummaryFunction::PercentOfSum:
        return value.isNull() ? QString() : FormatValue(value, QStringLiteral("0.0")) + QLatin1Char('%');
    default: return FormatValue(value, pattern);
    }
}

} // namespace Engine
