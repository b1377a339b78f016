#include "lumenta/skin/KeySampling.h"

#include "lumenta/skin/Node.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace SkinAnimation {

namespace {

/// Longer tracks are searched. Times ascend, so both ways find the same key.
constexpr std::size_t kScanLimit = 32;

TVec3<float> Lerp(const TVec3<float>& a, const TVec3<float>& b, float factor)
{
    return {(b.x - a.x) * factor + a.x, (b.y - a.y) * factor + a.y, (b.z - a.z) * factor + a.z};
}

/// The rotation a fraction `factor` of the way from `q0` to `q1`, along the
/// shorter arc. Nearly equal rotations are blended linearly, where the arc's
/// sine would vanish. The result is not normalised.
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

/// The place of the first key after the front one that lies strictly later than
/// `time`, or the number of keys. Of keys with one time the last is thus the
/// earlier of the pair.
///
/// Looks first at the guess, then in growing steps from there: a search from the
/// middle of a long track would fetch a line of memory at each step.
std::size_t FirstLater(const std::vector<KeyFrame>& keys, float time, std::size_t guess)
{
    const auto isLater = [&](std::size_t i) { return keys[i].time > time; };
    const std::size_t count = keys.size();
    if (count <= kScanLimit) {
        std::size_t i = 1;
        while (i < count && !isLater(i))
            ++i;
        return i;
    }

    std::size_t low = guess;
    std::size_t high = low + 1;
    std::size_t step = 1;
    while (low > 0 && isLater(low)) {
        high = low;
        low -= std::min(low, step);
        step *= 2;
    }
    while (high < count && !isLater(high)) {
        low = high;
        high = std::min(high + step, count);
        step *= 2;
    }
    while (high - low > 1) {
        const std::size_t middle = low + (high - low) / 2;
        (isLater(middle) ? high : low) = middle;
    }
    return high;
}

/// Where in a long track the keys about `time` would lie if all were evenly
/// spaced.
std::size_t GuessPlace(const std::vector<KeyFrame>& keys, float time)
{
    if (keys.size() <= kScanLimit) return 0;
    const float share = (time - keys.front().time) / (keys.back().time - keys.front().time);
    const auto last = static_cast<std::int64_t>(keys.size()) - 1;
    if (!(share > 0.0f && share < 1.0f)) return 0;
    return static_cast<std::size_t>(std::min(static_cast<std::int64_t>(share * static_cast<float>(last)), last));
}

} // namespace

KeyFrame InterpolateAt(const KeyFrame& a, const KeyFrame& b, float time)
{
    const float factor = (time - a.time) / (b.time - a.time);
    return {time, Lerp(a.translation, b.translation, factor), Slerp(a.rotation, b.rotation, factor),
            Lerp(a.scale, b.scale, factor)};
}

std::size_t FindKeys(const NodeTrack*& track, const NodeTrack* end, float time, Kernels::KeyPairs& pairs)
{
    const NodeTrack* tracks[Kernels::kTracks];
    std::size_t guesses[Kernels::kTracks];
    std::size_t count = 0;
    for (; track != end && count < Kernels::kTracks; ++track) {
        if (!track->node || track->keys.empty()) continue;
        const std::size_t guess = GuessPlace(track->keys, time);
        // Long tracks lie in no cache. All lines of a pair are sent for before any is looked at.
        const auto* const guessed = reinterpret_cast<const char*>(track->keys.data() + guess);
        __builtin_prefetch(guessed);
        __builtin_prefetch(guessed + sizeof(KeyFrame));
        __builtin_prefetch(guessed + 2 * sizeof(KeyFrame) - 1);
        tracks[count] = track;
        guesses[count++] = guess;
    }
    for (std::size_t i = 0; i < count; ++i) {
        const std::vector<KeyFrame>& keys = tracks[i]->keys;
        const KeyFrame* first = keys.data();
        const KeyFrame* second = first + (keys.size() - 1);
        float factor = 0.0f;
        if (first == second || first->time >= time) {
            second = first;
        } else if (time >= second->time) {
            first = second;
        } else if (const std::size_t later = FirstLater(keys, time, guesses[i]); later < keys.size()) {
            second = first + later;
            first = second - 1;
            factor = (time - first->time) / (second->time - first->time);
        } else { // a time that is not a number
            first = second - 1;
        }
        pairs.first[i] = first;
        pairs.second[i] = second;
        pairs.factors[i] = factor;
        pairs.locals[i] = tracks[i]->node->localTransform.m;
    }
    return count;
}

} // namespace SkinAnimation
