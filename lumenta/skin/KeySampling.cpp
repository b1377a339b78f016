#include "lumenta/skin/KeySampling.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace SkinAnimation {

namespace {

/// Longer tracks are searched. Times ascend, so both ways find the same key.
constexpr std::ptrdiff_t kScanLimit = 32;

TVec3<float> Lerp(const TVec3<float>& a, const TVec3<float>& b, float factor)
{
    return {(b.x - a.x) * factor + a.x, (b.y - a.y) * factor + a.y, (b.z - a.z) * factor + a.z};
}

KeyFrame Interpolate(const KeyFrame& a, const KeyFrame& b, float factor)
{
    return {a.time, Lerp(a.translation, b.translation, factor), Slerp(a.rotation, b.rotation, factor),
            Lerp(a.scale, b.scale, factor)};
}

/// The first key after the front one that lies strictly later than `time`, or
/// the end. Of keys with one time the last is thus the earlier of the pair.
///
/// Looks first where the key would lie if they were evenly spaced, then in
/// growing steps from there: a search from the middle of a long track would
/// fetch a line of memory at each step.
const KeyFrame* FirstLater(const KeyFrame* first, const KeyFrame* end, float time)
{
    const auto isLater = [time](const KeyFrame& key) { return key.time > time; };
    const std::ptrdiff_t count = end - first;
    if (count <= kScanLimit) return std::find_if(first + 1, end, isLater);

    const float share = (time - first->time) / (end[-1].time - first->time);
    std::ptrdiff_t low =
        share > 0.0f && share < 1.0f ? static_cast<std::ptrdiff_t>(share * static_cast<float>(count - 1)) : 0;
    std::ptrdiff_t high = std::min(low + 1, count);
    std::ptrdiff_t step = 1;
    while (low > 0 && isLater(first[low])) {
        high = low;
        low = std::max<std::ptrdiff_t>(low - step, 0);
        step *= 2;
    }
    while (high < count && !isLater(first[high])) {
        low = high;
        high = std::min(high + step, count);
        step *= 2;
    }
    return std::partition_point(first + low + 1, first + high, [&](const KeyFrame& key) { return !isLater(key); });
}

Matrix RotationOf(const Quaternion& q)
{
    Matrix r;
    r.m[0] = 1.0f - 2.0f * (q.y * q.y) - 2.0f * (q.z * q.z);
    r.m[1] = 2.0f * q.x * q.y + 2.0f * q.w * q.z;
    r.m[2] = 2.0f * q.x * q.z - 2.0f * q.w * q.y;
    r.m[4] = 2.0f * q.x * q.y - 2.0f * q.w * q.z;
    r.m[5] = 1.0f - 2.0f * (q.x * q.x) - 2.0f * (q.z * q.z);
    r.m[6] = 2.0f * q.y * q.z + 2.0f * q.w * q.x;
    r.m[8] = 2.0f * q.x * q.z + 2.0f * q.w * q.y;
    r.m[9] = 2.0f * q.y * q.z - 2.0f * q.w * q.x;
    r.m[10] = 1.0f - 2.0f * (q.x * q.x) - 2.0f * (q.y * q.y);
    return r;
}

Matrix LiteralTransform(const KeyFrame& key, const Matrix& rotation)
{
    Matrix scale;
    scale.m[0] = key.scale.x;
    scale.m[5] = key.scale.y;
    scale.m[10] = key.scale.z;

    Matrix translation;
    translation.SetTranslation(key.translation);

    return scale * rotation * translation;
}

} // namespace

Quaternion Slerp(const Quaternion& q0, const Quaternion& q1, float factor)
{
    const float dot = q0.x * q1.x + q0.y * q1.y + q0.z * q1.z + q0.w * q1.w;
    const float cosine = std::fabs(dot);

    float w0 = 1.0f - factor;
    float w1 = factor;
    if (static_cast<double>(1.0f - cosine) > 1e-5) {
        const float angle = std::acos(cosine);
        const float s = 1.0f / std::sin(angle);
        w0 = std::sin((1.0f - factor) * angle) * s;
        w1 = std::sin(factor * angle) * s;
    }
    if (dot < 0.0f) w1 = -w1;

    return {q0.x * w0 + q1.x * w1, q0.y * w0 + q1.y * w1, q0.z * w0 + q1.z * w1, q0.w * w0 + q1.w * w1};
}

KeyFrame InterpolateAt(const KeyFrame& a, const KeyFrame& b, float time)
{
    KeyFrame key = Interpolate(a, b, (time - a.time) / (b.time - a.time));
    key.time = time;
    return key;
}

KeyFrame SampleTrack(const std::vector<KeyFrame>& keys, float time)
{
    if (keys.size() == 1 || keys.front().time >= time) return keys.front();
    if (time >= keys.back().time) return keys.back();

    const KeyFrame* const end = keys.data() + keys.size();
    const KeyFrame* const later = FirstLater(keys.data(), end, time);
    if (later == end) // a time that is not a number
        return Interpolate(end[-2], end[-1], 0.0f);
    return Interpolate(later[-1], later[0], (time - later[-1].time) / (later[0].time - later[-1].time));
}

Matrix TransformOf(const KeyFrame& key)
{
    // Of the products scale * rotation * translation all but these terms are
    // zeros, and adding 0 does what adding them does: it turns -0 into +0. Where
    // anything is not finite, those zeros would not be zeros.
    const Matrix rotation = RotationOf(key.rotation);
    const float scales[3] = {key.scale.x, key.scale.y, key.scale.z};
    Matrix result;
    float finite = 0.0f;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) {
            float& element = result.m[4 * i + j];
            element = scales[i] * rotation.m[4 * i + j] + 0.0f;
            finite += element * 0.0f;
        }
    const TVec3<float>& t = key.translation;
    result.SetTranslation({t.x + 0.0f, t.y + 0.0f, t.z + 0.0f});
    finite += t.x * 0.0f + t.y * 0.0f + t.z * 0.0f;
    return finite == 0.0f ? result : LiteralTransform(key, rotation);
}

} // namespace SkinAnimation
