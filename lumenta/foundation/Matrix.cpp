#include "lumenta/foundation/Matrix.h"

#include "lumenta/kernels/Kernels.h"

#include <QDebug>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>

namespace {

constexpr float kDegreesToRadians = 0.017453292f;

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
    Kernels::Chosen().multiply(result.m, a.m, b.m);
}

Matrix operator*(const Matrix& a, const Matrix& b)
{
    Matrix result;
    Multiply(result, a, b);
    return result;
}

bool Inverse(Matrix& destination, const Matrix& source)
{
    return Kernels::Chosen().invert(destination.m, source.m);
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
