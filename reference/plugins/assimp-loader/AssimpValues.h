#pragma once

// Private to the loader: Assimp's values in terms of this system.

#include "lumenta/foundation/Matrix.h"

#include <QString>

#include <assimp/matrix4x4.h>
#include <assimp/quaternion.h>
#include <assimp/types.h>
#include <assimp/vector3.h>

#include <cmath>
#include <limits>

namespace Host {

// Whatever is computed on the way is computed in double and rounded once. Like
// all of Assimp's matrices these stand left of a column vector.
using WideMatrix = aiMatrix4x4t<double>;
using WideQuaternion = aiQuaterniont<double>;
using WideVector = aiVector3t<double>;

constexpr double kLargestFloat = static_cast<double>(std::numeric_limits<float>::max());

/// Assimp's texts are UTF-8.
QString ToText(const aiString& text);

/// The nearest float; what lies beyond its range becomes the largest one. A
/// value that is not a number stays so.
float ToFloat(double value);

/// The matrix for row vectors: the transpose.
Matrix ToMatrix(const WideMatrix& matrix);
WideMatrix ToWideMatrix(const Matrix& matrix);
WideMatrix Widen(const aiMatrix4x4& matrix);

bool IsFinite(const WideMatrix& matrix);

/// Whether every element of the inverse is a usable number.
bool IsInvertible(const WideMatrix& matrix);

template <typename Real>
bool IsFinite(const aiVector3t<Real>& v)
{
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

inline TVec3<float> ToVector(const aiVector3D& v)
{
    return {v.x, v.y, v.z};
}

inline WideMatrix InverseOf(WideMatrix matrix)
{
    return matrix.Inverse();
}

} // namespace Host
