#pragma once

#include "lumenta/foundation/Vector.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Host {

constexpr float kRadians = 0.017453292f; ///< In a degree.

constexpr TVec3<double> Widened(const TVec3<float>& v)
{
    return {static_cast<double>(v.x), static_cast<double>(v.y), static_cast<double>(v.z)};
}

/// The nearest vector of floats; what is beyond them is held at the largest.
inline TVec3<float> Narrowed(const TVec3<double>& v)
{
    static constexpr double kMost = static_cast<double>(std::numeric_limits<float>::max());
    const auto narrow = [](double value) { return static_cast<float>(std::clamp(value, -kMost, kMost)); };
    return {narrow(v.x), narrow(v.y), narrow(v.z)};
}

/// Euclidean length. In double, where no square of a float under- or overflows:
/// right for models of any size, unlike Length().
inline double LengthOf(const TVec3<double>& v)
{
    return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
}

/// `v` with unit length, however short or long it is, or `otherwise` where it
/// has no direction.
inline TVec3<float> UnitOr(const TVec3<float>& v, const TVec3<float>& otherwise)
{
    const TVec3<double> wide = Widened(v);
    const double length = LengthOf(wide);
    if (!(length > 0.0) || !std::isfinite(length))
        return otherwise;
    return Narrowed({wide.x / length, wide.y / length, wide.z / length});
}

} // namespace Host
