#pragma once

#include "reference/host/Studio.h"
#include "reference/host/Surface.h"

#include <embree3/rtcore.h>

#include <limits>
#include <memory>
#include <optional>
#include <vector>

namespace Host {

struct Ray3 {
    TVec3<float> origin;
    TVec3<float> direction; ///< Unit.
};

/// Where a ray meets a triangle.
struct TriangleHit {
    float distance;
    float u; ///< Weight of the second corner.
    float v; ///< Weight of the third.
    std::uint32_t mesh;
    std::uint32_t firstIndex; ///< Of the triangle, in the mesh's `indices`.
};

/// What a ray looks for.
enum class RayKind {
    Sight, ///< All but the backs of surfaces that have none.
    Shadow ///< All that casts shadows, from either side.
};

/// All triangles of a picture that can be drawn, in studio coordinates, ready
/// to be asked by any number of threads at once.
///
/// Built by one thread, so that its shape, and with it the answer where two
/// triangles are equally near, does not depend on how many there are.
class TriangleTree {
public:
    /// \throws OutOfMemoryException it does not fit in memory
    /// \throws Exception            Embree does not work here
    TriangleTree(const std::vector<PosedMesh>& meshes, const SurfaceTable& surfaces, const Studio& studio);
    TriangleTree(const TriangleTree&) = delete; // Embree knows its address
    TriangleTree& operator=(const TriangleTree&) = delete;

    /// The nearest triangle at no less than `least`.
    std::optional<TriangleHit> Nearest(const Ray3& ray, RayKind kind, float least) const;

    /// Whether anything that casts shadows is in the way, up to `most`.
    bool IsBlocked(const Ray3& ray, float most = std::numeric_limits<float>::infinity()) const;

private:
    struct Release {
        void operator()(RTCDevice device) const { rtcReleaseDevice(device); }
        void operator()(RTCScene scene) const { rtcReleaseScene(scene); }
        void operator()(RTCGeometry geometry) const { rtcReleaseGeometry(geometry); }
    };
    template <typename Handle>
    using Owned = std::unique_ptr<std::remove_pointer_t<Handle>, Release>;

    struct Triangle {
        std::uint32_t mesh;
        std::uint32_t firstIndex;
    };

    void CollectTriangles(const std::vector<PosedMesh>& meshes);
    void FillGeometry(RTCGeometry geometry, const std::vector<PosedMesh>& meshes, const Studio& studio) const;
    void ThrowIfFailed() const;

    /// Embree's question whether a ray may hit a triangle.
    static void Filter(const RTCFilterFunctionNArguments* arguments);

    const SurfaceTable& m_surfaces;
    std::vector<Triangle> m_triangles; ///< By Embree's number of the primitive.
    Owned<RTCDevice> m_device;
    Owned<RTCScene> m_scene;
};

} // namespace Host
