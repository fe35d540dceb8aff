#include "engine/xls/XlsFormula.h"

#include "engine/xls/Biff.h"

namespace Engine {

namespace {
constexpr quint8 AreaReference = 0x25;     // an area, as a reference (what aggregates take)
constexpr quint8 VariadicCallValue = 0x42; // a call with a counted argument list, giving a value
constexpr quint16 RelativeRowAndColumn = 0xC000;
} // namespace

QByteArray AggregateTokens(XlsAggregate function, const XlsRange &range)
{
    QByteArray tokens;
    Biff::Put8(tokens, AreaReference);
    Biff::Put16(tokens, quint16(range.firstRow));
    Biff::Put16(tokens, quint16(range.lastRow));
    Biff::Put16(tokens, quint16(RelativeRowAndColumn | range.firstColumn));
    Biff::Put16(tokens, quint16(RelativeRowAndColumn | range.lastColumn));
    Biff::Put8(tokens, VariadicCallValue);
    Biff::Put8(tokens, 1); // one argument
    Biff::Put16(tokens, quint16(function));
    return tokens;
}

} // namespace Engine
