#pragma once

#include "lumenta/Export.h"

#include <QTransform>

class QDebug;

/// A 3×3 transform of texture coordinates, row vectors as in Matrix.
///
/// Row-major: (a, b, 0), (c, d, 0), (tx, ty, 1). There is no way to make
/// another third column, so a coordinate (u, v) maps to (u·a + v·c + tx, u·b + v·d + ty).
struct Matrix2 {
    float m[9]; ///< Row by row.

    /// \param a, b, c, d where the axes go
    /// \param tx, ty      where the origin goes
    constexpr Matrix2(float a, float b, float c, float d, float tx, float ty)
        : m{a, b, 0.0f, c, d, 0.0f, tx, ty, 1.0f}
    {
    }
};

LUMENTA_EXPORT bool operator==(const Matrix2& a, const Matrix2& b);
inline bool operator!=(const Matrix2& a, const Matrix2& b) { return !(a == b); }

/// QTransform has row vectors too: the elements stand where they stood.
LUMENTA_EXPORT QTransform Matrix2ToQTransform(const Matrix2& matrix);

/// Narrowed to float. A perspective part has no place here and is dropped.
LUMENTA_EXPORT Matrix2 QTransformToMatrix2(const QTransform& transform);

LUMENTA_EXPORT QDebug operator<<(QDebug debug, const Matrix2& matrix);
