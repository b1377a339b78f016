#pragma once

#include "lumenta/Export.h"
#include "lumenta/foundation/Vector.h"

#include <limits>

/// An axis-aligned box: six values, minimum corner first.
///
/// A box that nothing was added to is *empty*: its minimum is the largest
/// finite value and its maximum the smallest, so that extending it by a point
/// makes it that point, and extending another box by it changes nothing.
///
/// To transform a box, transform the points it is made from; eight transformed
/// corners make a box that is too large.
///
/// Centre and half-extent are instantiated for float and double only.
template <typename T>
struct TBBox {
    /// The smallest corner; starts above every point.
    TVec3<T> min{std::numeric_limits<T>::max(), std::numeric_limits<T>::max(), std::numeric_limits<T>::max()};
    /// The largest corner; starts below every point.
    TVec3<T> max{std::numeric_limits<T>::lowest(), std::numeric_limits<T>::lowest(), std::numeric_limits<T>::lowest()};

    TBBox() = default;
    /// The two corners as they are given: nothing puts them in order.
    constexpr TBBox(const TVec3<T>& minimum, const TVec3<T>& maximum)
        : min(minimum)
        , max(maximum)
    {
    }

    /// True while the minimum lies above the maximum on any axis.
    bool IsEmpty() const { return min.x > max.x || min.y > max.y || min.z > max.z; }

    /// Grows the box to hold `point`. Each axis for itself; a component that
    /// is not a number changes nothing.
    void Extend(const TVec3<T>& point)
    {
        LowerMinimum(point);
        RaiseMaximum(point);
    }

    /// Grows the box to hold `other`; an empty `other` changes nothing.
    void Extend(const TBBox& other)
    {
        LowerMinimum(other.min);
        RaiseMaximum(other.max);
    }

    /// (min + max) · 0.5 on each axis.
    TVec3<T> Center() const;

    /// Centre − min on each axis.
    TVec3<T> HalfExtent() const;

private:
    void LowerMinimum(const TVec3<T>& point)
    {
        if (point.x < min.x) min.x = point.x;
        if (point.y < min.y) min.y = point.y;
        if (point.z < min.z) min.z = point.z;
    }

    void RaiseMaximum(const TVec3<T>& point)
    {
        if (point.x > max.x) max.x = point.x;
        if (point.y > max.y) max.y = point.y;
        if (point.z > max.z) max.z = point.z;
    }
};

extern template struct LUMENTA_EXPORT TBBox<float>;
extern template struct LUMENTA_EXPORT TBBox<double>;

template <typename T>
constexpr bool operator==(const TBBox<T>& a, const TBBox<T>& b) { return a.min == b.min && a.max == b.max; }
template <typename T>
constexpr bool operator!=(const TBBox<T>& a, const TBBox<T>& b) { return !(a == b); }

LUMENTA_EXPORT QDebug operator<<(QDebug debug, const TBBox<float>& box);
