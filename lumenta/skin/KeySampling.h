#pragma once

// Private to the library: the values of a track between its keys.

#include "lumenta/foundation/Matrix.h"
#include "lumenta/skin/Animation.h"

namespace SkinAnimation {

/// The rotation a fraction `factor` of the way from `q0` to `q1`, along the
/// shorter arc. Nearly equal rotations are blended linearly, where the arc's
/// sine would vanish. The result is not normalised.
Quaternion Slerp(const Quaternion& q0, const Quaternion& q1, float factor);

/// The value of the track between `a` and `b` at `time`; `time` is not clamped.
KeyFrame InterpolateAt(const KeyFrame& a, const KeyFrame& b, float time);

/// The value of a track at `time`, clamped to its first and last key. The
/// result's own time is unspecified.
/// \pre `keys` is not empty and ascends in time
KeyFrame SampleTrack(const std::vector<KeyFrame>& keys, float time);

/// Scale, then rotation, then translation.
Matrix TransformOf(const KeyFrame& key);

} // namespace SkinAnimation
