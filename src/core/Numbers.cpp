#include "Numbers.h"

#include "QorloError.h"

#include <QRegularExpression>
#include <cmath>

namespace Numbers {

namespace {

const QRegularExpression &NumberPattern()
{
    static const QRegularExpression pattern(
        QStringLiteral("^[+-]?(?:\\d+\\.?\\d*|\\.\\d+)(?:[eE][+-]?\\d+)?"));
    return pattern;
}

} // namespace

double NumericPrefix(const QString &text)
{
    const QString rest = text.trimmed();
    const QRegularExpressionMatch match = NumberPattern().match(rest);
    if (!match.hasMatch())
        return 0;
    return match.captured(0).toDouble();
}

bool IsNumeric(const QString &text)
{
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty())
        return false;
    const QRegularExpressionMatch match = NumberPattern().match(trimmed);
    return match.hasMatch() && match.capturedLength(0) == trimmed.size();
}

double RoundEven(double value)
{
    return std::nearbyint(value);
}

qint16 ToInt16(double value)
{
    const double rounded = RoundEven(value);
    if (!(rounded >= -32768.0 && rounded <= 32767.0))
        throw QorloError(QorloError::Overflow);
    return qint16(rounded);
}

qint32 ToInt32(double value)
{
    const double rounded = RoundEven(value);
    if (!(rounded >= -2147483648.0 && rounded <= 2147483647.0))
        throw QorloError(QorloError::Overflow);
    return qint32(rounded);
}

qint16 TextToInt16(const QString &text)
{
    if (!IsNumeric(text))
        throw QorloError(QorloError::TypeMismatch);
    return ToInt16(text.trimmed().toDouble());
}

qint32 TextToInt32(const QString &text)
{
    if (!IsNumeric(text))
        throw QorloError(QorloError::TypeMismatch);
    return ToInt32(text.trimmed().toDouble());
}

QString FormatHash(qint64 value)
{
    return value == 0 ? QString() : QString::number(value);
}

QString FormatZeros(qint64 value, int width)
{
    const QString digits = QString::number(std::abs(value)).rightJustified(width, QLatin1Char('0'));
    return value < 0 ? QLatin1Char('-') + digits : digits;
}

} // namespace Numbers
