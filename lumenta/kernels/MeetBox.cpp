// A segment of the world against a box of a node: the question that picking asks
// of every node, nearly always to hear no.
//
// The start goes through the inverse in one half and the end in the other, each
// coordinate summed as TransformPoint() does.

#include "lumenta/kernels/BoxLanes.h"
#include "lumenta/kernels/Kernels.h"
#include "lumenta/kernels/MatrixLanes.h"

namespace Kernels::LUMENTA_LEVEL {

bool MeetBox(const float* global, const SegmentEnds& ends, const TBBox<float>& box, TVec3<float>* local)
{
    MatrixColumns inverse;
    if (!::Invert(inverse, LoadTwinRows(global))) return false;
    const TwinRows rows = TwinRowsOf(inverse);
    const Float8 moved = rows.row[0] * Load8(ends.x) + rows.row[1] * Load8(ends.y) + rows.row[2] * Load8(ends.z)
                         + rows.row[3];

    const Float4 centre = (Low(moved) + High(moved)) * Splat4(0.5f);
    const Float4 halfDelta = centre - Low(moved);
    if (!Overlap({centre, halfDelta, Abs4(halfDelta)}, box)) return false;
    Store3(local[0], Low(moved));
    Store3(local[1], High(moved));
    return true;
}

} // namespace Kernels::LUMENTA_LEVEL
