#include "lumenta/foundation/Matrix.h"

#include "lumenta/foundation/Float4.h"

#include <QDebug>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>

namespace {

constexpr float kDegreesToRadians = 0.017453292f;

/// The determinant of a 3×3 minor, lane by lane. Every cofactor, and through
/// them the determinant, comes from this one expansion: a different order of
/// the same terms would round differently.
inline Float4 Minor(Float4 a, Float4 b, Float4 c, Float4 d, Float4 e, Float4 f, Float4 g, Float4 h, Float4 i)
{
    return a * (e * i - f * h) - b * (d * i - f * g) + c * (d * h - e * g);
}

/// The minors of one row: lane j leaves out column j, and the rows given are
/// the three others from top to bottom.
inline Float4 MinorsOfRow(Float4 top, Float4 middle, Float4 bottom)
{
    return Minor(Shuffle<1, 0, 0, 0>(top), Shuffle<2, 2, 1, 1>(top), Shuffle<3, 3, 3, 2>(top),
                 Shuffle<1, 0, 0, 0>(middle), Shuffle<2, 2, 1, 1>(middle), Shuffle<3, 3, 3, 2>(middle),
                 Shuffle<1, 0, 0, 0>(bottom), Shuffle<2, 2, 1, 1>(bottom), Shuffle<3, 3, 3, 2>(bottom));
}

} // namespace

void Matrix::SetTranslation(const TVec3<float>& translation)
{
    m[12] = translation.x;
    m[13] = translation.y;
    m[14] = translation.z;
}

void Matrix::SetRotation(const TVec3<float>& degrees)
{
    const float s0 = std::sin(degrees.x * kDegreesToRadians);
    const float c0 = std::cos(degrees.x * kDegreesToRadians);
    const float s1 = std::sin(degrees.y * kDegreesToRadians);
    const float c1 = std::cos(degrees.y * kDegreesToRadians);
    const float c2 = std::cos(degrees.z * kDegreesToRadians);
    const float t = -std::sin(degrees.z * kDegreesToRadians);

    m[0] = c1 * c2;
    m[1] = -c1 * t;
    m[2] = s1;
    m[4] = s1 * (s0 * c2) + c0 * t;
    m[5] = c2 * c0 - s0 * s1 * t;
    m[6] = -c1 * s0;
    m[8] = s0 * t - s1 * (c2 * c0);
    m[9] = c0 * s1 * t + s0 * c2;
    m[10] = c0 * c1;
}

void Multiply(Matrix& result, const Matrix& a, const Matrix& b)
{
    const Float4 b0 = Load4(b.m);
    const Float4 b1 = Load4(b.m + 4);
    const Float4 b2 = Load4(b.m + 8);
    const Float4 b3 = Load4(b.m + 12);
    for (int i = 0; i < 4; ++i) {
        // Row i of the result needs row i of `a` alone, so `a` may be overwritten row by row.
        const float* row = a.m + 4 * i;
        Store4(result.m + 4 * i, Splat4(row[0]) * b0 + Splat4(row[1]) * b1 + Splat4(row[2]) * b2 + Splat4(row[3]) * b3);
    }
}

Matrix operator*(const Matrix& a, const Matrix& b)
{
    Matrix result;
    Multiply(result, a, b);
    return result;
}

bool Inverse(Matrix& destination, const Matrix& source)
{
    const Float4 row0 = Load4(source.m);
    const Float4 row1 = Load4(source.m + 4);
    const Float4 row2 = Load4(source.m + 8);
    const Float4 row3 = Load4(source.m + 12);

    const Float4 evenSigns = {1.0f, -1.0f, 1.0f, -1.0f};
    const Float4 oddSigns = {-1.0f, 1.0f, -1.0f, 1.0f};
    const Float4 cofactors0 = MinorsOfRow(row1, row2, row3) * evenSigns;

    const Float4 terms = row0 * cofactors0;
    const float determinant = terms[0] + terms[1] + terms[2] + terms[3];
    if (determinant == 0.0f)
        return false;

    const Float4 reciprocal = Splat4(1.0f / determinant);
    const Float4 columns[4] = {cofactors0 * reciprocal,
                               MinorsOfRow(row0, row2, row3) * oddSigns * reciprocal,
                               MinorsOfRow(row0, row1, row3) * evenSigns * reciprocal,
                               MinorsOfRow(row0, row1, row2) * oddSigns * reciprocal};
    for (int i = 0; i < 4; ++i)
        Store4(destination.m + 4 * i, Float4{columns[0][i], columns[1][i], columns[2][i], columns[3][i]});
    return true;
}

void TransformPoint(TVec3<float>& point, const Matrix& matrix)
{
    const float(&m)[16] = matrix.m;
    point = {m[0] * point.x + m[4] * point.y + m[8] * point.z + m[12],
             m[1] * point.x + m[5] * point.y + m[9] * point.z + m[13],
             m[2] * point.x + m[6] * point.y + m[10] * point.z + m[14]};
}

void TransformDirection(TVec3<float>& direction, const Matrix& matrix)
{
    const float(&m)[16] = matrix.m;
    direction = {m[0] * direction.x + m[4] * direction.y + m[8] * direction.z,
                 m[1] * direction.x + m[5] * direction.y + m[9] * direction.z,
                 m[2] * direction.x + m[6] * direction.y + m[10] * direction.z};
}

TVec3<float> DirectionFromAngles(const TVec3<float>& degrees)
{
    const float pitch = degrees.y * kDegreesToRadians;
    const float heading = degrees.z * kDegreesToRadians;
    return {std::cos(heading) * std::cos(pitch), std::sin(heading) * std::cos(pitch), std::sin(pitch)};
}

bool operator==(const Matrix& a, const Matrix& b)
{
    return std::equal(std::begin(a.m), std::end(a.m), std::begin(b.m));
}

QMatrix4x4 MatrixToQMatrix4x4(const Matrix& matrix)
{
    // Qt keeps column vectors' matrices column by column: the same sixteen floats in a row.
    QMatrix4x4 result;
    std::memcpy(result.data(), matrix.m, sizeof matrix.m);
    return result;
}

Matrix QMatrix4x4ToMatrix(const QMatrix4x4& matrix)
{
    Matrix result;
    std::memcpy(result.m, matrix.constData(), sizeof result.m);
    return result;
}

QDebug operator<<(QDebug debug, const Matrix& matrix)
{
    const QDebugStateSaver saver(debug);
    debug.nospace() << "Matrix(";
    for (int i = 0; i < 4; ++i) {
        const float* row = matrix.m + 4 * i;
        debug << (i == 0 ? "" : "; ") << row[0] << ", " << row[1] << ", " << row[2] << ", " << row[3];
    }
    debug << ')';
    return debug;
}
