#include "benchmarks/Peers.h"

#include "lumenta/interfaces/IMesh.h"

#include <Eigen/Dense>
#include <embree3/rtcore.h>

#define GLM_ENABLE_EXPERIMENTAL
#include <glm/glm.hpp>
#include <glm/gtc/type_ptr.hpp>
#include <glm/gtx/intersect.hpp>

#include <cstring>
#include <stdexcept>

using namespace SkinAnimation;

namespace Peers {

namespace {

// Both libraries keep matrices for column vectors column by column: ours in
// memory, so that products are written the other way round.

glm::mat4 ToGlm(const Matrix& matrix)
{
    return glm::make_mat4(matrix.m);
}

glm::vec3 ToGlm(const TVec3<float>& v)
{
    return {v.x, v.y, v.z};
}

auto ToEigen(const Matrix& matrix)
{
    return Eigen::Map<const Eigen::Matrix4f, Eigen::Aligned16>(matrix.m);
}

auto ToEigen(Matrix& matrix)
{
    return Eigen::Map<Eigen::Matrix4f, Eigen::Aligned16>(matrix.m);
}

auto ToEigen(const TVec3<float>& v)
{
    return Eigen::Map<const Eigen::Vector3f>(&v.x);
}

auto ToEigen(TVec3<float>& v)
{
    return Eigen::Map<Eigen::Vector3f>(&v.x);
}

} // namespace

void MultiplyWithGlm(std::vector<Matrix>& results, const std::vector<Matrix>& a, const std::vector<Matrix>& b)
{
    for (std::size_t i = 0; i < results.size(); ++i) {
        const glm::mat4 product = ToGlm(b[i]) * ToGlm(a[i]);
        std::memcpy(results[i].m, glm::value_ptr(product), sizeof product);
    }
}

void MultiplyWithEigen(std::vector<Matrix>& results, const std::vector<Matrix>& a, const std::vector<Matrix>& b)
{
    for (std::size_t i = 0; i < results.size(); ++i)
        ToEigen(results[i]).noalias() = ToEigen(b[i]) * ToEigen(a[i]);
}

void InvertWithGlm(std::vector<Matrix>& results, const std::vector<Matrix>& sources)
{
    for (std::size_t i = 0; i < results.size(); ++i) {
        const glm::mat4 inverse = glm::inverse(ToGlm(sources[i]));
        std::memcpy(results[i].m, glm::value_ptr(inverse), sizeof inverse);
    }
}

void InvertWithEigen(std::vector<Matrix>& results, const std::vector<Matrix>& sources)
{
    for (std::size_t i = 0; i < results.size(); ++i)
        ToEigen(results[i]) = ToEigen(sources[i]).inverse();
}

void UpdateMeshWithEigen(Geometry& geometry, const Node& node, const Scene& scene)
{
    struct Bone {
        Eigen::Matrix4f point, normal;
    };
    Matrix bindInverse;
    Inverse(bindInverse, node.bindTransform);
    std::vector<Bone> bones;
    bones.reserve(scene.nodes.size());
    for (const Node* bone : scene.nodes)
        bones.push_back({ToEigen(bone->skinTransform) * ToEigen(node.bindTransform),
                         (ToEigen(bindInverse) * ToEigen(bone->skinTransformInverse)).transpose()});

    const Eigen::Array3f scale = ToEigen(scene.scale).array();
    const Eigen::Array3f offset = ToEigen(scene.offset).array();
    for (std::size_t i = 0; i < geometry.vertices.size(); ++i) {
        const SkinVertex& v = geometry.vertices[i];
        Eigen::Matrix4f point = bones[v.boneIndices[0]].point * v.weights[0];
        Eigen::Matrix4f normal = bones[v.boneIndices[0]].normal * v.weights[0];
        for (int j = 1; j < 4 && v.weights[j] != 0.0f; ++j) {
            point += bones[v.boneIndices[j]].point * v.weights[j];
            normal += bones[v.boneIndices[j]].normal * v.weights[j];
        }
        MeshVertex& o = geometry.meshVertices[i];
        const Eigen::Vector4f moved = point * ToEigen(v.position).homogeneous();
        ToEigen(o.position) = moved.head<3>().array() * scale + offset;
        const Eigen::Vector3f turned = normal.topLeftCorner<3, 3>() * ToEigen(v.normal);
        ToEigen(o.normal) = (turned.array() / scale).matrix().normalized();
        o.texCoord = v.texCoord;
    }
}

void TouchVertices(Geometry& geometry)
{
    for (std::size_t i = 0; i < geometry.vertices.size(); ++i) {
        const SkinVertex& v = geometry.vertices[i];
        MeshVertex& o = geometry.meshVertices[i];
        std::memcpy(&o.position, &v.position, 2 * sizeof v.position);
        // A record is longer than a line of the cache: its end has to be read, too.
        std::memcpy(&o.texCoord, v.weights + 2, sizeof o.texCoord);
    }
}

float TraceWithGlm(const Ray& ray, const IMesh& mesh)
{
    const std::vector<MeshVertex>& vertices = mesh.GetVertices();
    const std::vector<unsigned int>& indices = mesh.GetIndices();
    const auto corner = [&](std::size_t k) { return ToGlm(vertices[indices[k]].position); };
    const glm::vec3 start = ToGlm(ray.start);
    const glm::vec3 delta = ToGlm(ray.end) - start;
    float nearest = 1.0f;
    for (std::size_t k = 0; k + 2 < indices.size(); k += 3) {
        glm::vec2 place;
        float t = 1.0f;
        if (glm::intersectRayTriangle(start, delta, corner(k), corner(k + 1), corner(k + 2), place, t) && t >= 0.0f
            && t < nearest)
            nearest = t;
    }
    return nearest;
}

std::uint64_t TouchMesh(const IMesh& mesh)
{
    std::uint64_t sum[4] = {};
    const auto touch = [&sum](const auto& list) {
        constexpr std::size_t kLine = 64;
        const auto* const bytes = reinterpret_cast<const char*>(list.data());
        const std::size_t size = list.size() * sizeof list[0];
        for (std::size_t i = 0; i + 4 * kLine <= size; i += 4 * kLine) {
            for (std::size_t j = 0; j < 4; ++j) {
                std::uint64_t word = 0;
                std::memcpy(&word, bytes + i + j * kLine, sizeof word);
                sum[j] += word;
            }
        }
    };
    touch(mesh.GetVertices());
    touch(mesh.GetIndices());
    return sum[0] + sum[1] + sum[2] + sum[3];
}

struct EmbreeMesh::Handles {
    RTCDevice device = rtcNewDevice("threads=1");
    RTCScene scene = rtcNewScene(device);

    Handles() = default;
    Handles(const Handles&) = delete;
    Handles& operator=(const Handles&) = delete;

    ~Handles()
    {
        rtcReleaseScene(scene);
        rtcReleaseDevice(device);
    }
};

EmbreeMesh::EmbreeMesh(const IMesh& mesh)
    : m_handles(std::make_unique<Handles>())
{
    const std::vector<MeshVertex>& vertices = mesh.GetVertices();
    const std::vector<unsigned int>& indices = mesh.GetIndices();
    RTCGeometry triangles = rtcNewGeometry(m_handles->device, RTC_GEOMETRY_TYPE_TRIANGLE);
    rtcSetSharedGeometryBuffer(triangles, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3, vertices.data(), 0,
                               sizeof(MeshVertex), vertices.size());
    rtcSetSharedGeometryBuffer(triangles, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, indices.data(), 0,
                               3 * sizeof(unsigned int), indices.size() / 3);
    rtcCommitGeometry(triangles);
    rtcAttachGeometry(m_handles->scene, triangles);
    rtcReleaseGeometry(triangles);
    rtcCommitScene(m_handles->scene);
    if (const RTCError error = rtcGetDeviceError(m_handles->device); error != RTC_ERROR_NONE)
        throw std::runtime_error("Embree failed with error " + std::to_string(error));
}

EmbreeMesh::~EmbreeMesh() = default;

float EmbreeMesh::Trace(const Ray& ray) const
{
    const TVec3<float> delta = ray.end - ray.start;
    RTCRayHit query{};
    query.ray = {ray.start.x, ray.start.y, ray.start.z, 0.0f, delta.x, delta.y, delta.z, 0.0f, 1.0f, ~0u, 0, 0};
    query.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    RTCIntersectContext context;
    rtcInitIntersectContext(&context);
    rtcIntersect1(m_handles->scene, &context, &query);
    return query.ray.tfar;
}

} // namespace Peers
