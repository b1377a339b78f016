#pragma once

// Private to the library: a segment against a box, the axes side by side.

#include "lumenta/foundation/BBox.h"
#include "lumenta/kernels/Lanes.h"

namespace {

/// What Ray keeps of a segment; what each fourth lane holds doesn't matter.
struct SegmentLanes {
    Float4 centre, halfDelta, absHalfDelta;
};

/// Whether no axis separates the two: none of the box's, and none across it and
/// the segment. A comparison in which a number is missing doesn't part them.
LUMENTA_LANES_INLINE bool Overlap(const SegmentLanes& segment, const TBBox<float>& box)
{
    const auto next = [](Float4 v) { return Shuffle<1, 2, 0, 3>(v); };
    const Float4 low = Load4(&box.min);
    const Float4 high = Shuffle<1, 2, 3, 3>(Load4(&box.min.z));
    const Float4 boxCentre = (low + high) * Splat4(0.5f);
    const Float4 e = boxCentre - low;
    const Float4 d = segment.centre - boxCentre;
    const Float4 h = segment.halfDelta;
    const Float4 a = segment.absHalfDelta;

    // Neither the order of the axes nor the sign of a difference makes one.
    const Mask4 apart = (Abs4(d) > e + a) | (Abs4(d * next(h) - next(d) * h) > a * next(e) + e * next(a));
    return (Bits4(apart) & 7u) == 0;
}

} // namespace
