#include "engine/xls/XlsRk.h"

#include <cmath>
#include <cstring>

namespace Engine {

namespace {

constexpr quint32 Times100 = 0x1;
constexpr quint32 Integer = 0x2;
constexpr double IntegerLimit = 1 << 29; // 30-bit signed integers

quint64 Bits(double value)
{
    quint64 bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

std::optional<quint32> Exact(quint32 rk, double value)
{
    if (Bits(DecodeRk(rk)) == Bits(value))
        return rk;
    return std::nullopt;
}

std::optional<quint32> AsInteger(double value, quint32 flags)
{
    if (!(value >= -IntegerLimit && value < IntegerLimit) || value != std::floor(value))
        return std::nullopt;
    return quint32(qint32(value) * 4) | flags;
}

} // namespace

double DecodeRk(quint32 rk)
{
    double value;
    if (rk & Integer) {
        value = double(qint32(rk) >> 2);
    } else {
        const quint64 bits = quint64(rk & ~quint32(3)) << 32;
        std::memcpy(&value, &bits, sizeof value);
    }
    return (rk & Times100) ? value / 100 : value;
}

std::optional<quint32> EncodeRk(double value)
{
    if (!std::isfinite(value))
        return std::nullopt;
    if (const auto whole = AsInteger(value, Integer))
        if (const auto rk = Exact(*whole, value))
            return rk;
    if ((Bits(value) & 0x3FFFFFFFFull) == 0)
        return quint32(Bits(value) >> 32);
    if (const auto hundredths = AsInteger(value * 100, Integer | Times100))
        return Exact(*hundredths, value);
    return std::nullopt;
}

} // namespace Engine
