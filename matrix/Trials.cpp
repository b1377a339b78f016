#include "matrix/Trials.h"

#include <cmath>

namespace Trials {

void Sum::Add(std::uint64_t bits)
{
    for (int shift = 0; shift < 64; shift += 8)
        m_sum = (m_sum ^ (bits >> shift & 0xff)) * UINT64_C(0x100000001b3);
}

void Sum::Add(float value)
{
    std::uint32_t bits = 0x7fc00000;
    if (!std::isnan(value)) std::memcpy(&bits, &value, sizeof bits);
    Add(std::uint64_t{bits});
}

void Sum::Add(double value)
{
    std::uint64_t bits = UINT64_C(0x7ff8000000000000);
    if (!std::isnan(value)) std::memcpy(&bits, &value, sizeof bits);
    Add(bits);
}

void Sum::Add(const QString& text)
{
    Add(text.size());
    for (const QChar letter : text)
        Add(std::uint64_t{letter.unicode()});
}

float AnyFloat(Random& random)
{
    switch (random.Below(8)) {
    case 0:
        return Workloads::OddFloat(random);
    case 1: {
        const std::uint32_t bits = random.Next();
        float value = 0.0f;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }
    case 2:
        return static_cast<float>(random.Below(65)) * 0.25f - 8.0f;
    case 3: {
        const float part = random.Between(-1.0f, 1.0f);
        return std::ldexp(part, static_cast<int>(random.Below(60)) - 30);
    }
    default:
        return random.Between(-10.0f, 10.0f);
    }
}

Vec3 AnyVector(Random& random)
{
    if (random.Below(4) != 0) return Workloads::RandomVector(random, -10.0f, 10.0f);
    const float x = AnyFloat(random);
    const float y = AnyFloat(random);
    return {x, y, AnyFloat(random)};
}

int AnyInt(Random& random)
{
    switch (random.Below(4)) {
    case 0:
        return static_cast<int>(random.Next());
    case 1:
        return static_cast<int>(random.Below(21)) - 10;
    default:
        return static_cast<int>(random.Below(5000));
    }
}

Vec3 AnyAngles(Random& random)
{
    const auto angle = [&random] {
        if (random.Below(8) == 0) return AnyFloat(random);
        if (random.Below(4) == 0) return static_cast<float>(random.Below(33)) * 45.0f - 720.0f;
        return random.Between(-720.0f, 720.0f);
    };
    const float x = angle();
    const float y = angle();
    return {x, y, angle()};
}

Matrix TameTransform(Random& random)
{
    // A rotation out of a unit quaternion.
    Vec3 v = Workloads::RandomVector(random, -1.0f, 1.0f);
    float w = random.Between(0.1f, 1.0f);
    const float length = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z + w * w);
    v = {v.x / length, v.y / length, v.z / length};
    w = w / length;
    const float rows[3][3] = {
        {1.0f - 2.0f * (v.y * v.y + v.z * v.z), 2.0f * (v.x * v.y + v.z * w), 2.0f * (v.x * v.z - v.y * w)},
        {2.0f * (v.x * v.y - v.z * w), 1.0f - 2.0f * (v.x * v.x + v.z * v.z), 2.0f * (v.y * v.z + v.x * w)},
        {2.0f * (v.x * v.z + v.y * w), 2.0f * (v.y * v.z - v.x * w), 1.0f - 2.0f * (v.x * v.x + v.y * v.y)}};
    Matrix matrix;
    for (int i = 0; i < 3; ++i) {
        const float scale = random.Between(0.5f, 2.0f);
        for (int j = 0; j < 3; ++j)
            matrix(i, j) = scale * rows[i][j];
    }
    matrix.SetTranslation(Workloads::RandomVector(random, -5.0f, 5.0f));
    return matrix;
}

Matrix AnyTransform(Random& random)
{
    Matrix matrix = TameTransform(random);
    if (random.Below(4) == 0) matrix.SetTranslation(AnyVector(random));
    if (random.Below(16) == 0) matrix.m[0] = matrix.m[1] = matrix.m[2] = 0.0f;
    const std::uint32_t odd = random.Below(16);
    if (odd == 0) matrix.m[random.Below(16)] = AnyFloat(random);
    if (odd == 1)
        for (float& value : matrix.m)
            value = AnyFloat(random);
    return matrix;
}

} // namespace Trials
