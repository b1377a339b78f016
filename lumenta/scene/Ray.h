#pragma once

#include "lumenta/Export.h"
#include "lumenta/foundation/BBox.h"

class IMesh;

/// A finite segment from `start` to `end`, used for picking.
///
/// Every Trace() answers with a parameter along the segment as it is now: 0 at
/// the start, 1 at the end, never outside. 1 also means "no hit", so a hit
/// exactly at the end cannot be told from a miss, which callers depend on. Of
/// spheres and triangles, what comes out as not a number is no hit.
///
/// A plain value of fifteen floats; change `end` by Clip(), which keeps the
/// last three vectors in step. Reentrant. Nothing here allocates or throws.
struct LUMENTA_EXPORT Ray {
    /// Of the diagonal of a mesh's box: by how much a triangle may be missed and is hit still.
    static constexpr float kTolerance = 0.0001f;

    TVec3<float> start;        ///< Where parameters are 0.
    TVec3<float> end;          ///< Where they are 1.
    TVec3<float> centre;       ///< Middle of the segment.
    TVec3<float> halfDelta;    ///< From `start` to `centre`.
    TVec3<float> absHalfDelta; ///< `halfDelta` without signs.

    /// Both points as they are given: nothing is normalised.
    Ray(const TVec3<float>& from, const TVec3<float>& to);

    /// Whether the segment and the box overlap, by separating axes (Ericson,
    /// "Real-Time Collision Detection", 2005, 5.3.3). Touching counts. A box that
    /// nothing was added to overlaps nothing; a comparison in which a number is
    /// missing doesn't part the two.
    bool IsIntersect(const TBBox<float>& box) const;

    /// Whether the segment touches the ball, from outside or by starting in it
    /// (Ericson, 5.3.2). `centre` is the sphere's, not the segment's.
    bool IsIntersect(const TVec3<float>& centre, float radius) const;

    /// The nearest triangle, seen from either side: where the segment crosses its
    /// plane within its edges (Haines, "Essential ray tracing algorithms", in
    /// Glassner, "An Introduction to Ray Tracing", 1989). 1 also for a mesh whose
    /// owner is excluded from tracing, and for triangles without area. Indices
    /// behind the last whole triangle are ignored.
    ///
    /// Two things follow from the tolerance, `kTolerance` of the diagonal
    /// of the mesh's box (0 where the box is empty), and callers depend on
    /// them. A point outside an edge by no more is inside. And a triangle is
    /// met where it would lie if moved by that much along the normal of its
    /// winding, so equal triangles of opposite winding are met at parameters
    /// that differ.
    ///
    /// Linear in the number of triangles.
    float Trace(const IMesh& mesh) const;

    /// Where the segment enters the box, by slabs (Kay, Kajiya, "Ray tracing
    /// complex scenes", 1986); 0 if it starts inside. On an axis
    /// along which the segment doesn't move the box is not asked: one beside
    /// the segment is still hit if the other axes say so. Callers depend on it.
    /// Nor is it on one whose numbers are missing.
    float Trace(const TBBox<float>& box) const;

    /// Where the segment enters the sphere. Unlike IsIntersect(), a segment
    /// that starts inside counts as a miss, which callers depend on.
    float Trace(const TVec3<float>& centre, float radius) const;

    /// Moves the end to the parameter `t`.
    void Clip(float t);
};

static_assert(sizeof(Ray) == 60, "hosts and plug-ins share rays as fifteen floats");
