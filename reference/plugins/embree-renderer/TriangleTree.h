#pragma once

#include "reference/host/Studio.h"

#include <embree3/rtcore.h>

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

/// All triangles of a picture that can be drawn, in studio coordinates, ready
/// to be asked by any number of threads at once.
///
/// Built by one thread, so that its shape, and with it the answer where two
/// triangles are equally near, does not depend on how many there are.
class TriangleTree {
public:
    /// \throws OutOfMemoryException it does not fit in memory
    /// \throws Exception            Embree does not work here
    TriangleTree(const std::vector<PosedMesh>& meshes, const Studio& studio);

    /// The nearest triangle, either side, at no less than `least`.
    std::optional<TriangleHit> Nearest(const Ray3& ray, float least) const;

    /// Whether any triangle is in the way.
    bool IsBlocked(const Ray3& ray) const;

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

    std::vector<Triangle> m_triangles; ///< By Embree's number of the primitive.
    Owned<RTCDevice> m_device;
    Owned<RTCScene> m_scene;
};

} // namespace Host
