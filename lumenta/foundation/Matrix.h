#pragma once

#include "lumenta/Export.h"
#include "lumenta/foundation/Vector.h"

#include <QMatrix4x4>

/// A 4×4 transform of row vectors.
///
/// Row-major: row i, column j is m[4·i + j]. Since points stand on the left,
/// each row of the upper 3×3 is where an axis goes, the bottom row is where
/// the origin goes, and products read from left to right in the order they
/// happen: global = local · parent's global.
///
/// Points are transformed affinely; the fourth component is never computed.
/// Projective matrices are only carried to whoever draws with them.
///
/// A plain value, 64 bytes, 16-byte aligned, so that a row loads as one
/// vector. Starts as the identity. No formula stands in this header: the
/// client's own compiler flags must not change a bit of any result.
struct LUMENTA_EXPORT Matrix {
    /// Row by row.
    alignas(16) float m[16] = {1.0f, 0.0f, 0.0f, 0.0f,
                               0.0f, 1.0f, 0.0f, 0.0f,
                               0.0f, 0.0f, 1.0f, 0.0f,
                               0.0f, 0.0f, 0.0f, 1.0f};

    float& operator()(int row, int column) { return m[4 * row + column]; } ///< Both counted from 0; not checked.
    float operator()(int row, int column) const { return m[4 * row + column]; } ///< Likewise.

    void SetIdentity() { *this = Matrix(); } ///< Overwrites all sixteen.

    TVec3<float> GetTranslation() const { return {m[12], m[13], m[14]}; } ///< Where the origin goes: m[12..14].

    /// Writes m[12..14] and nothing else.
    void SetTranslation(const TVec3<float>& translation);

    /// Writes the nine rotation elements from three angles in degrees and
    /// nothing else; start from an identity.
    ///
    /// The rotation about x by −degrees.x, then that about y by −degrees.y, then
    /// that about z by degrees.z, each right-handed: what looks along x is lifted by
    /// a positive y angle and turned towards y by a positive z angle (Shoemake,
    /// "Euler angle conversion", Graphics Gems IV, 1994).
    void SetRotation(const TVec3<float>& degrees);
};

/// result = a·b, each element summed over k = 0, 1, 2, 3 in this order.
/// `result` may be `a` or `b`.
LUMENTA_EXPORT void Multiply(Matrix& result, const Matrix& a, const Matrix& b);

/// The product a·b, as Multiply() makes it.
LUMENTA_EXPORT Matrix operator*(const Matrix& a, const Matrix& b);

/// Writes the full 4×4 inverse of `source`, the adjugate times the reciprocal
/// of the determinant, which is expanded along the first row (Horn, Johnson, "Matrix
/// Analysis", 2012, 0.8), to `destination`, which may be `source`.
///
/// Where the determinant is exactly 0 the destination keeps what it held: no
/// error, and the answer is false. Overwriting callers start from an identity.
LUMENTA_EXPORT bool Inverse(Matrix& destination, const Matrix& source);

/// Moves `point` by `matrix`, translation included.
LUMENTA_EXPORT void TransformPoint(TVec3<float>& point, const Matrix& matrix);

/// Turns `direction` by `matrix`, without its translation. Not for normals
/// under non-uniform scale: those follow the inverse transpose (Turkowski,
/// "Properties of surface-normal transformations", Graphics Gems, 1990).
LUMENTA_EXPORT void TransformDirection(TVec3<float>& direction, const Matrix& matrix);

/// The unit direction (cos z · cos y, sin z · cos y, sin y) of a heading z and a
/// pitch y, in degrees: heading 0 looks along x, 90 along y, pitch 90 along z. The
/// x angle, a roll, is ignored.
LUMENTA_EXPORT TVec3<float> DirectionFromAngles(const TVec3<float>& degrees);

LUMENTA_EXPORT bool operator==(const Matrix& a, const Matrix& b);
inline bool operator!=(const Matrix& a, const Matrix& b) { return !(a == b); }

/// The same transform for column vectors, as Qt writes them: the transpose.
/// For an affine A, `MatrixToQMatrix4x4(A).map(p)` is `p` moved by A; for a
/// projective one Qt also divides. A·B becomes
/// `MatrixToQMatrix4x4(B) * MatrixToQMatrix4x4(A)`.
LUMENTA_EXPORT QMatrix4x4 MatrixToQMatrix4x4(const Matrix& matrix);
/// The way back.
LUMENTA_EXPORT Matrix QMatrix4x4ToMatrix(const QMatrix4x4& matrix);

LUMENTA_EXPORT QDebug operator<<(QDebug debug, const Matrix& matrix);
