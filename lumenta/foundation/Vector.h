#pragma once

#include "lumenta/Export.h"

#include <QVector2D>
#include <QVector3D>

class QDebug;

/// Two components: a texture coordinate, or a size in pixels.
///
/// A plain record without a constructor: `TVec2<float> v;` is uninitialised,
/// `TVec2<float> v{};` is zero.
template <typename T>
struct TVec2 {
    T x; ///< To the right; u of a texture coordinate.
    T y; ///< The other one; v of a texture coordinate.
};

/// Three components, contiguous: a point, a direction, a normal, or Euler
/// angles in degrees. A plain record like TVec2.
template <typename T>
struct TVec3 {
    T x; ///< First.
    T y; ///< Second.
    T z; ///< Third; up, in the world.
};

// Sums and differences are inline. Products are not: a compiler that may fuse
// a product with a sum behind it would do so across inlined operators, and the
// bits would depend on the client's flags.

template <typename T>
constexpr bool operator==(const TVec2<T>& a, const TVec2<T>& b) { return a.x == b.x && a.y == b.y; }
template <typename T>
constexpr bool operator!=(const TVec2<T>& a, const TVec2<T>& b) { return !(a == b); }
template <typename T>
constexpr TVec2<T> operator+(const TVec2<T>& a, const TVec2<T>& b) { return {a.x + b.x, a.y + b.y}; }
template <typename T>
constexpr TVec2<T> operator-(const TVec2<T>& a, const TVec2<T>& b) { return {a.x - b.x, a.y - b.y}; }
template <typename T>
constexpr TVec2<T> operator-(const TVec2<T>& a) { return {-a.x, -a.y}; }

template <typename T>
constexpr bool operator==(const TVec3<T>& a, const TVec3<T>& b) { return a.x == b.x && a.y == b.y && a.z == b.z; }
template <typename T>
constexpr bool operator!=(const TVec3<T>& a, const TVec3<T>& b) { return !(a == b); }
template <typename T>
constexpr TVec3<T> operator+(const TVec3<T>& a, const TVec3<T>& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
template <typename T>
constexpr TVec3<T> operator-(const TVec3<T>& a, const TVec3<T>& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
template <typename T>
constexpr TVec3<T> operator-(const TVec3<T>& a) { return {-a.x, -a.y, -a.z}; }
/// Each component times `factor`.
LUMENTA_EXPORT TVec2<float> operator*(const TVec2<float>& v, float factor);
/// Each component times `factor`.
LUMENTA_EXPORT TVec3<float> operator*(const TVec3<float>& v, float factor);

/// x·x' + y·y' + z·z', summed in this order.
LUMENTA_EXPORT float Dot(const TVec3<float>& a, const TVec3<float>& b);

/// The right-handed cross product a × b.
LUMENTA_EXPORT TVec3<float> Cross(const TVec3<float>& a, const TVec3<float>& b);

/// Euclidean length.
LUMENTA_EXPORT float Length(const TVec3<float>& v);

/// `v` divided by its length, or `v` itself where that length is exactly 0.
/// A length that is not a number is divided by.
LUMENTA_EXPORT TVec3<float> Normalized(const TVec3<float>& v);

/// The same components, bit by bit.
inline QVector2D TVec2ToQVector2D(const TVec2<float>& v) { return {v.x, v.y}; }
/// The same components, bit by bit.
inline TVec2<float> QVector2DToTVec2(const QVector2D& v) { return {v.x(), v.y()}; }
/// The same components, bit by bit.
inline QVector3D TVec3ToQVector3D(const TVec3<float>& v) { return {v.x, v.y, v.z}; }
/// The same components, bit by bit.
inline TVec3<float> QVector3DToTVec3(const QVector3D& v) { return {v.x(), v.y(), v.z()}; }

LUMENTA_EXPORT QDebug operator<<(QDebug debug, const TVec2<float>& v);
LUMENTA_EXPORT QDebug operator<<(QDebug debug, const TVec3<float>& v);
