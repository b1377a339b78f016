#include "benchmarks/NaiveScene.h"

#include "benchmarks/NaiveSkin.h"
#include "lumenta/foundation/CameraMatrices.h"
#include "lumenta/interfaces/IFreeCamera.h"
#include "lumenta/interfaces/ILightNode.h"
#include "lumenta/interfaces/IMesh.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/interfaces/INode.h"

#include <algorithm>
#include <cmath>

namespace Naive {

namespace {

using Vec3 = TVec3<float>;

/// The library's own are behind calls, which would be no fair opponent for its loops.
namespace Plain {

inline Vec3 Scaled(const Vec3& v, float factor)
{
    return {v.x * factor, v.y * factor, v.z * factor};
}

inline float Dot(const Vec3& a, const Vec3& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

inline Vec3 Cross(const Vec3& a, const Vec3& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

inline float Length(const Vec3& v)
{
    return std::sqrt(Plain::Dot(v, v));
}

inline Vec3 Normalized(const Vec3& v)
{
    const float length = Plain::Length(v);
    return length == 0.0f ? v : Vec3{v.x / length, v.y / length, v.z / length};
}

inline Vec3 Moved(const Vec3& p, const Matrix& matrix)
{
    const float* m = matrix.m;
    return {m[0] * p.x + m[4] * p.y + m[8] * p.z + m[12], m[1] * p.x + m[5] * p.y + m[9] * p.z + m[13],
            m[2] * p.x + m[6] * p.y + m[10] * p.z + m[14]};
}

inline bool IsIntersect(const Ray& ray, const TBBox<float>& box)
{
    const Vec3 centre = Scaled(box.min + box.max, 0.5f);
    const Vec3 e = centre - box.min;
    const Vec3 d = ray.centre - centre;
    const Vec3& h = ray.halfDelta;
    const Vec3& a = ray.absHalfDelta;
    return !(std::fabs(d.x) > e.x + a.x || std::fabs(d.y) > e.y + a.y || std::fabs(d.z) > e.z + a.z
             || std::fabs(d.z * h.y - d.y * h.z) > a.y * e.z + e.y * a.z
             || std::fabs(h.z * d.x - d.z * h.x) > a.z * e.x + e.z * a.x
             || std::fabs(d.y * h.x - d.x * h.y) > a.x * e.y + e.x * a.y);
}

} // namespace Plain

void Append(INode* node, std::vector<INode*>& list)
{
    if (std::find(list.begin(), list.end(), node) == list.end())
        list.push_back(node);
    for (INode* const child : node->GetChildren())
        Append(child, list);
}

void TakePending(INode* node, std::vector<INode*>& pending, std::vector<INode*>& result)
{
    const auto found = std::find(pending.begin(), pending.end(), node);
    if (found != pending.end()) {
        result.push_back(node);
        pending.erase(found);
    }
    for (INode* const child : node->GetChildren())
        TakePending(child, pending, result);
}

void PickMeshes(Picked& picked, INode* node, const IMeshNode& meshNode, const Matrix& inverse)
{
    Ray local(Plain::Moved(picked.ray.start, inverse), Plain::Moved(picked.ray.end, inverse));
    if (!Plain::IsIntersect(local, meshNode.GetBBox()))
        return;
    float f = 1.0f;
    for (const IMesh* const mesh : meshNode.GetMeshes()) {
        const float t = Plain::IsIntersect(local, mesh->GetBBox()) ? Naive::Trace(local, *mesh) : 1.0f;
        if (t < 1.0f) {
            local.Clip(t);
            f = f * t;
            picked = {picked.ray, node, mesh};
        }
    }
    if (f < 1.0f)
        picked.ray.Clip(f);
}

void PickUnder(Picked& picked, INode* node, const Matrix& parentGlobal)
{
    Matrix global, inverse;
    Naive::Multiply(global, node->GetMatrix(), parentGlobal);
    const int type = node->IsVisible() ? node->GetType() : 0;
    const auto* const meshNode = type == 1 ? qobject_cast<IMeshNode*>(node) : nullptr;
    const auto* const light = type == 2 ? qobject_cast<ILightNode*>(node) : nullptr;
    if (meshNode && Naive::Inverse(inverse, global)) PickMeshes(picked, node, *meshNode, inverse);
    if (light) {
        const float t = picked.ray.Trace(global.GetTranslation(), light->GetRadius());
        if (t < 1.0f) {
            picked.ray.Clip(t);
            picked = {picked.ray, node, nullptr};
        }
    }
    for (INode* const child : node->GetChildren())
        PickUnder(picked, child, global);
}

} // namespace

std::vector<INode*> CollectAllChildren(const std::vector<INode*>& nodes)
{
    std::vector<INode*> list;
    for (INode* const node : nodes)
        Append(node, list);
    return list;
}

std::vector<INode*> SortAccordingToTheSceneTree(const std::vector<INode*>& nodes, INode* root, bool reverse)
{
    if (nodes.size() < 2)
        return nodes;
    std::vector<INode*> pending = nodes, result;
    TakePending(root, pending, result);
    if (reverse)
        std::reverse(result.begin(), result.end());
    return result;
}

bool IsIntersect(const Ray& ray, const TBBox<float>& box)
{
    return Plain::IsIntersect(ray, box);
}

void UpdateBBoxRecursive(TBBox<float>& box, const INode* node, const Matrix& parentMatrix)
{
    Matrix global;
    Naive::Multiply(global, node->GetMatrix(), parentMatrix);
    const auto* const meshNode = node->GetType() == 1 && node->IsVisible() ? qobject_cast<IMeshNode*>(node) : nullptr;
    if (meshNode)
        for (const IMesh* const mesh : meshNode->GetMeshes())
            for (const MeshVertex& vertex : mesh->GetVertices())
                box.Extend(Plain::Moved(vertex.position, global));
    for (const INode* const child : node->GetChildren())
        Naive::UpdateBBoxRecursive(box, child, global);
}

float Trace(const Ray& ray, const IMesh& mesh)
{
    if (mesh.GetOwner() && mesh.GetOwner()->IsExcludedFromTracing())
        return 1.0f;
    const TBBox<float>& box = mesh.GetBBox();
    const bool valid = box.min.x <= box.max.x && box.min.y <= box.max.y && box.min.z <= box.max.z;
    const float epsilon = 0.0001f * (valid ? Plain::Length(box.max - box.min) : 0.0f);

    const std::vector<MeshVertex>& vertices = mesh.GetVertices();
    const std::vector<unsigned int>& indices = mesh.GetIndices();
    Vec3 end = ray.end;
    float f = 1.0f;
    for (std::size_t k = 0; k + 2 < indices.size(); k += 3) {
        const Vec3 p[] = {vertices[indices[k]].position, vertices[indices[k + 1]].position,
                          vertices[indices[k + 2]].position};
        const Vec3 normal = Plain::Cross(p[2] - p[1], p[2] - p[0]);
        if (Plain::Length(normal) == 0.0f) continue;
        const Vec3 n = Plain::Normalized(normal);
        const float plane = Plain::Dot(n, p[0]) + epsilon;
        const float sign = Plain::Dot(n, ray.start) - plane < 0.0f ? -1.0f : 1.0f;
        const float d0 = (Plain::Dot(n, ray.start) - plane) * sign;
        const float d1 = (Plain::Dot(n, end) - plane) * sign;
        if (!(d1 < 0.0f)) continue;
        const float t = d0 / (d0 - d1);
        const Vec3 hit = ray.start + Plain::Scaled(end - ray.start, t);
        const auto isInside = [&](const Vec3& from, const Vec3& to) {
            return Plain::Dot(hit - from, Plain::Normalized(Plain::Cross(n, to - from))) <= epsilon;
        };
        if (isInside(p[0], p[1]) && isInside(p[1], p[2]) && isInside(p[2], p[0])) {
            end = hit;
            f = f * t;
        }
    }
    return f;
}

Picked Pick(const QPoint& point, const TVec2<float>& viewSize, const IScene& scene)
{
    const IFreeCamera& camera = *scene.GetCamera();
    const Matrix& placement = camera.GetMatrix();
    const float nx = 2.0f * (static_cast<float>(point.x()) / viewSize.x) - 1.0f;
    const float ny = 2.0f * (static_cast<float>(point.y()) / viewSize.y) - 1.0f;
    Matrix p;
    CalculateProjectionMatrix(p, camera.GetFieldOfView(), camera.GetFrameAspect(), viewSize.x / viewSize.y, 0.1f, 1e3f);
    Vec3 direction{1.0f, -nx / p.m[0], -ny / p.m[5]};
    TransformDirection(direction, placement);
    const Vec3 position = placement.GetTranslation();
    Picked picked{{position, position + Normalized(direction) * 10000.0f}, nullptr, nullptr};
    PickUnder(picked, scene.GetRoot(), Matrix());
    return picked;
}

} // namespace Naive
