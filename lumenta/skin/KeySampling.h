#pragma once

// Private to the library: the values of a track between its keys.

#include "lumenta/kernels/Kernels.h"
#include "lumenta/skin/Animation.h"

#include <cstddef>

namespace SkinAnimation {

/// The value of the track between `a` and `b` at `time`; `time` is not clamped.
KeyFrame InterpolateAt(const KeyFrame& a, const KeyFrame& b, float time);

/// Finds the keys of tracks about `time`, each clamped to its first and last one,
/// until `pairs` is full or `track` reaches `end`. Tracks without a node or
/// without keys are left out.
/// \pre the keys of a track ascend in time
/// \return the number of pairs
std::size_t FindKeys(const NodeTrack*& track, const NodeTrack* end, float time, Kernels::KeyPairs& pairs);

} // namespace SkinAnimation
