#pragma once
// Guards for the coordinates of the page model, which come from report files and data.

#include <cmath>

namespace Engine {

// A coordinate that orders and computes: anything that is not a number counts as 0.
inline double Finite(double value)
{
    return std::isfinite(value) ? value : 0.0;
}

} // namespace Engine
