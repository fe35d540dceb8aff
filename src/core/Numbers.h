#pragma once
// Numbers read from text and the checked integer conversions of the original platform.

#include <QString>
#include <QtGlobal>

namespace Numbers {

// The leading numeric prefix of the text (optional blanks, sign, digits, point, exponent); 0 if none.
double NumericPrefix(const QString &text);
// Trimmed text that is a decimal number; empty is not numeric.
bool IsNumeric(const QString &text);
// Rounds halves to the even neighbour.
double RoundEven(double value);
// Rounded to even, then checked: out of range raises the overflow error (6).
qint16 ToInt16(double value);
qint32 ToInt32(double value);
// Numeric text converted as above; text that is not numeric raises the type error (13).
qint16 TextToInt16(const QString &text);
qint32 TextToInt32(const QString &text);
// The number format "#": 0 gives an empty text.
QString FormatHash(qint64 value);
// The number format "00", "0000", ...: at least `width` digits.
QString FormatZeros(qint64 value, int width);

} // namespace Numbers
