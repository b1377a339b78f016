#pragma once

// Private to the library: a segment against the triangles of a mesh.

#include "lumenta/kernels/Kernels.h"

/// Where the segment from `start` to `end` first meets one of `count` triangles,
/// 1 for nowhere. A point outside an edge or before a plane by no more than the
/// tolerance meets it, too.
float TraceTriangles(const Kernels::Table& kernels, const TVec3<float>& start, const TVec3<float>& end, float tolerance,
                     const MeshVertex* vertices, const std::uint32_t* indices, std::size_t count);
