#pragma once

#include "lumenta/Export.h"

#include <QColor>

class QDebug;

/// A colour of four floats, nominally 0 to 1. Nothing clamps them here.
struct ColorF {
    float r; ///< Red.
    float g; ///< Green.
    float b; ///< Blue.
    float a; ///< Alpha: 1 is opaque.
};

/// Whether all four values are equal.
constexpr bool operator==(const ColorF& x, const ColorF& y)
{
    return x.r == y.r && x.g == y.g && x.b == y.b && x.a == y.a;
}
constexpr bool operator!=(const ColorF& x, const ColorF& y) { return !(x == y); }

/// The 8-bit colour: each of r, g and b clamped to 0..1, times 255, truncated,
/// so 0.999 gives 254. A component that is not a number gives 0.
///
/// The result is always opaque: `ColorF::a` is ignored. Callers that need
/// transparency carry it beside the colour.
LUMENTA_EXPORT QColor ColorToQColor(const ColorF& color);

/// The float colour of `color`'s 8-bit components, each times the float nearest
/// 1/255. Alpha is always 1; the QColor's own is ignored.
LUMENTA_EXPORT ColorF QColorToColorF(const QColor& color);

LUMENTA_EXPORT QDebug operator<<(QDebug debug, const ColorF& color);
