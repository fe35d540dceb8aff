#include "engine/xls/XlsFormula.h"

#include "engine/xls/Biff.h"

namespace Engine {

namespace {
constexpr quint8 CellReference = 0x24;     // one cell, as a reference
constexpr quint8 AreaReference = 0x25;     // an area, as a reference (what aggregates take)
constexpr quint8 VariadicCallValue = 0x42; // a call with a counted argument list, giving a value
constexpr quint16 RelativeRowAndColumn = 0xC000;
} // namespace

QByteArray AggregateTokens(XlsAggregate function, const XlsRange &range)
{
    return AggregateTokens(function, QList<XlsRange>{range});
}

QByteArray AggregateTokens(XlsAggregate function, const QList<XlsRange> &ranges)
{
    QByteArray tokens;
    for (const XlsRange &range : ranges) {
        const bool cell = range.firstRow == range.lastRow && range.firstColumn == range.lastColumn;
        Biff::Put8(tokens, cell ? CellReference : AreaReference);
        Biff::Put16(tokens, quint16(range.firstRow));
        if (!cell)
            Biff::Put16(tokens, quint16(range.lastRow));
        Biff::Put16(tokens, quint16(RelativeRowAndColumn | range.firstColumn));
        if (!cell)
            Biff::Put16(tokens, quint16(RelativeRowAndColumn | range.lastColumn));
    }
    Biff::Put8(tokens, VariadicCallValue);
    Biff::Put8(tokens, quint8(ranges.size()));
    Biff::Put16(tokens, quint16(function));
    return tokens;
}

} // namespace Engine
