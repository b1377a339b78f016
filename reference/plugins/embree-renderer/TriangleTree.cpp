#include "reference/plugins/embree-renderer/TriangleTree.h"

#include "lumenta/foundation/Exceptions.h"

#include <limits>

namespace Host {

namespace {

constexpr float kFarAway = std::numeric_limits<float>::infinity();

RTCRay EmbreeRay(const Ray3& ray, float least)
{
    RTCRay result{};
    result.org_x = ray.origin.x;
    result.org_y = ray.origin.y;
    result.org_z = ray.origin.z;
    result.dir_x = ray.direction.x;
    result.dir_y = ray.direction.y;
    result.dir_z = ray.direction.z;
    result.tnear = least;
    result.tfar = kFarAway;
    result.mask = ~0u;
    return result;
}

template <typename T>
T* NewBuffer(RTCGeometry geometry, RTCBufferType type, RTCFormat format, std::size_t count)
{
    return static_cast<T*>(rtcSetNewGeometryBuffer(geometry, type, 0, format, sizeof(T), count));
}

} // namespace

TriangleTree::TriangleTree(const std::vector<PosedMesh>& meshes, const Studio& studio)
    : m_device(rtcNewDevice("threads=1"))
{
    ThrowIfFailed();
    m_scene.reset(rtcNewScene(m_device.get()));
    ThrowIfFailed();
    rtcSetSceneFlags(m_scene.get(), RTC_SCENE_FLAG_ROBUST); // no cracks between neighbours

    CollectTriangles(meshes);
    if (!m_triangles.empty()) {
        const Owned<RTCGeometry> geometry(rtcNewGeometry(m_device.get(), RTC_GEOMETRY_TYPE_TRIANGLE));
        ThrowIfFailed();
        FillGeometry(geometry.get(), meshes, studio);
        rtcCommitGeometry(geometry.get());
        rtcAttachGeometry(m_scene.get(), geometry.get());
    }
    rtcCommitScene(m_scene.get());
    ThrowIfFailed();
}

void TriangleTree::CollectTriangles(const std::vector<PosedMesh>& meshes)
{
    for (std::size_t mesh = 0; mesh < meshes.size(); ++mesh)
        for (std::size_t first = 0; first < meshes[mesh].indices.size(); first += 3)
            if (IsDrawable(meshes[mesh], first))
                m_triangles.push_back({static_cast<std::uint32_t>(mesh), static_cast<std::uint32_t>(first)});
}

void TriangleTree::FillGeometry(RTCGeometry geometry, const std::vector<PosedMesh>& meshes,
                                const Studio& studio) const
{
    std::vector<std::uint32_t> firstVertex{0};
    for (const PosedMesh& mesh : meshes)
        firstVertex.push_back(firstVertex.back() + static_cast<std::uint32_t>(mesh.vertices.size()));

    auto* vertex = NewBuffer<TVec3<float>>(geometry, RTC_BUFFER_TYPE_VERTEX, RTC_FORMAT_FLOAT3, firstVertex.back());
    auto* corner = NewBuffer<std::uint32_t[3]>(geometry, RTC_BUFFER_TYPE_INDEX, RTC_FORMAT_UINT3, m_triangles.size());
    ThrowIfFailed();
    for (const PosedMesh& mesh : meshes)
        for (const MeshVertex& source : mesh.vertices)
            *vertex++ = studio.FromWorld(source.position);
    for (const Triangle& triangle : m_triangles) {
        for (std::size_t i = 0; i < 3; ++i)
            (*corner)[i] = firstVertex[triangle.mesh] + meshes[triangle.mesh].indices[triangle.firstIndex + i];
        ++corner;
    }
}

void TriangleTree::ThrowIfFailed() const
{
    const RTCError error = rtcGetDeviceError(m_device.get()); // of this thread where there is no device
    if (error == RTC_ERROR_NONE)
        return;
    if (error == RTC_ERROR_OUT_OF_MEMORY)
        throw OutOfMemoryException(QStringLiteral("Not enough memory to trace %1 triangles").arg(m_triangles.size()));
    throw Exception(QStringLiteral("The ray tracer Embree failed with error %1").arg(static_cast<int>(error)));
}

std::optional<TriangleHit> TriangleTree::Nearest(const Ray3& ray, float least) const
{
    RTCIntersectContext context;
    rtcInitIntersectContext(&context);
    RTCRayHit query{};
    query.ray = EmbreeRay(ray, least);
    query.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    rtcIntersect1(m_scene.get(), &context, &query);
    if (query.hit.geomID == RTC_INVALID_GEOMETRY_ID)
        return std::nullopt;
    const Triangle& triangle = m_triangles[query.hit.primID];
    return TriangleHit{query.ray.tfar, query.hit.u, query.hit.v, triangle.mesh, triangle.firstIndex};
}

bool TriangleTree::IsBlocked(const Ray3& ray) const
{
    RTCIntersectContext context;
    rtcInitIntersectContext(&context);
    RTCRay query = EmbreeRay(ray, 0.0f);
    rtcOccluded1(m_scene.get(), &context, &query);
    return query.tfar < 0.0f;
}

} // namespace Host
