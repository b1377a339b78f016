#include "reference/plugins/embree-renderer/TriangleTree.h"

#include "lumenta/foundation/Exceptions.h"

namespace Host {

namespace {

constexpr float kFarAway = std::numeric_limits<float>::infinity();

/// What TriangleTree::Filter() gets to know of the ray.
struct Query {
    RTCIntersectContext context; // first: Embree is handed its address
    RayKind kind;

    explicit Query(RayKind rayKind)
        : kind(rayKind)
    {
        rtcInitIntersectContext(&context);
    }
};

RTCRay EmbreeRay(const Ray3& ray, float least, float most)
{
    RTCRay result{};
    result.org_x = ray.origin.x;
    result.org_y = ray.origin.y;
    result.org_z = ray.origin.z;
    result.dir_x = ray.direction.x;
    result.dir_y = ray.direction.y;
    result.dir_z = ray.direction.z;
    result.tnear = least;
    result.tfar = most;
    result.mask = ~0u;
    return result;
}

template <typename T>
T* NewBuffer(RTCGeometry geometry, RTCBufferType type, RTCFormat format, std::size_t count)
{
    return static_cast<T*>(rtcSetNewGeometryBuffer(geometry, type, 0, format, sizeof(T), count));
}

} // namespace

TriangleTree::TriangleTree(const std::vector<PosedMesh>& meshes, const SurfaceTable& surfaces, const Studio& studio)
    : m_surfaces(surfaces)
    , m_device(rtcNewDevice("threads=1"))
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
        if (surfaces.HasAny([](const Surface& surface) { return !surface.twoSided || !surface.castsShadows; })) {
            rtcSetGeometryUserData(geometry.get(), this);
            rtcSetGeometryIntersectFilterFunction(geometry.get(), Filter);
            rtcSetGeometryOccludedFilterFunction(geometry.get(), Filter);
        }
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

void TriangleTree::Filter(const RTCFilterFunctionNArguments* arguments)
{
    const auto& tree = *static_cast<const TriangleTree*>(arguments->geometryUserPtr);
    const auto& query = *reinterpret_cast<const Query*>(arguments->context);
    const RTCRay& ray = *reinterpret_cast<const RTCRay*>(arguments->ray); // all queries are of one ray
    const RTCHit& hit = *reinterpret_cast<const RTCHit*>(arguments->hit);
    const Surface& surface = tree.m_surfaces.Of(tree.m_triangles[hit.primID].mesh);
    // Embree's normals have the corners anticlockwise: they point out of the back.
    const bool fromBehind = hit.Ng_x * ray.dir_x + hit.Ng_y * ray.dir_y + hit.Ng_z * ray.dir_z < 0.0f;
    if (query.kind == RayKind::Shadow ? !surface.castsShadows : !surface.twoSided && fromBehind)
        arguments->valid[0] = 0;
}

std::optional<TriangleHit> TriangleTree::Nearest(const Ray3& ray, RayKind kind, float least) const
{
    Query query(kind);
    RTCRayHit found{};
    found.ray = EmbreeRay(ray, least, kFarAway);
    found.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    rtcIntersect1(m_scene.get(), &query.context, &found);
    if (found.hit.geomID == RTC_INVALID_GEOMETRY_ID)
        return std::nullopt;
    const Triangle& triangle = m_triangles[found.hit.primID];
    return TriangleHit{found.ray.tfar, found.hit.u, found.hit.v, triangle.mesh, triangle.firstIndex};
}

bool TriangleTree::IsBlocked(const Ray3& ray, float most) const
{
    Query query(RayKind::Shadow);
    RTCRay found = EmbreeRay(ray, 0.0f, most);
    rtcOccluded1(m_scene.get(), &query.context, &found);
    return found.tfar < 0.0f;
}

} // namespace Host
