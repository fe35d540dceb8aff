#pragma once
// Worksheet formulas for totals: one aggregate function over a rectangle of cells.

#include <QByteArray>
#include <QList>

namespace Engine {

// The function numbers are the ones the file format gives these built-in functions.
enum class XlsAggregate : quint16 { Count = 0, Sum = 4, Average = 5, Min = 6, Max = 7 };

// A rectangle of cells on the formula's own sheet, first and last inclusive, counted from 0.
struct XlsRange
{
    int firstRow = 0;
    int lastRow = 0;
    int firstColumn = 0;
    int lastColumn = 0;
};

// A function takes at most this many arguments in this file format.
constexpr int MaxAggregateArguments = 30;

// The parsed form (reverse Polish tokens) of FUNCTION(range), e.g. SUM(B2:B10).
QByteArray AggregateTokens(XlsAggregate function, const XlsRange &range);
// FUNCTION(range, range, ...), a range of one cell written as that cell: SUM(B5,B9,B12).
QByteArray AggregateTokens(XlsAggregate function, const QList<XlsRange> &ranges);

} // namespace Engine
