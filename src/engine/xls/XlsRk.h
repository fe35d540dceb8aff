#pragma once
// The compact 30-bit "RK" form of cell numbers, used only where it gives back the exact same double.

#include <optional>
#include <QtGlobal>

namespace Engine {

// The RK value that reads back as exactly `value` (bit for bit), if there is one.
std::optional<quint32> EncodeRk(double value);
// What a reader makes of an RK value.
double DecodeRk(quint32 rk);

} // namespace Engine
