#include "benchmarks/NaiveScene.h"

#include "lumenta/foundation/CameraMatrices.h"
#include "lumenta/interfaces/IFreeCamera.h"
#include "lumenta/interfaces/ILightNode.h"
#include "lumenta/interfaces/IMesh.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/interfaces/INode.h"

#include <algorithm>

namespace Naive {

namespace {

using Vec3 = TVec3<float>;

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
    Vec3 start = picked.ray.start, end = picked.ray.end;
    TransformPoint(start, inverse);
    TransformPoint(end, inverse);
    Ray local(start, end);
    if (!local.IsIntersect(meshNode.GetBBox()))
        return;
    float f = 1.0f;
    for (const IMesh* const mesh : meshNode.GetMeshes()) {
        const float t = local.IsIntersect(mesh->GetBBox()) ? Naive::Trace(local, *mesh) : 1.0f;
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
    const Matrix global = node->GetMatrix() * parentGlobal;
    const auto* const meshNode = qobject_cast<IMeshNode*>(node);
    const auto* const light = qobject_cast<ILightNode*>(node);
    Matrix inverse;
    if (node->IsVisible() && node->GetType() == 1 && meshNode && Inverse(inverse, global))
        PickMeshes(picked, node, *meshNode, inverse);
    if (node->IsVisible() && node->GetType() == 2 && light) {
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

float Trace(const Ray& ray, const IMesh& mesh)
{
    const bool excluded = mesh.GetOwner() && mesh.GetOwner()->IsExcludedFromTracing();
    const TBBox<float>& box = mesh.GetBBox();
    const bool valid = box.min.x <= box.max.x && box.min.y <= box.max.y && box.min.z <= box.max.z;
    const float epsilon = 0.0001f * (valid ? Length(box.max - box.min) : 0.0f);

    Vec3 end = ray.end;
    float f = 1.0f;
    for (std::size_t k = 0; !excluded && k + 2 < mesh.GetIndices().size(); k += 3) {
        Vec3 p[3];
        for (std::size_t i = 0; i < 3; ++i)
            p[i] = mesh.GetVertices()[mesh.GetIndices()[k + i]].position;
        const Vec3 normal = Cross(p[2] - p[1], p[2] - p[0]);
        const Vec3 n = Normalized(normal);
        const float plane = Dot(n, p[0]) + epsilon;
        const float sign = Dot(n, ray.start) - plane < 0.0f ? -1.0f : 1.0f;
        const float d0 = (Dot(n, ray.start) - plane) * sign;
        const float d1 = (Dot(n, end) - plane) * sign;
        const float t = d0 / (d0 - d1);
        const Vec3 hit = ray.start + (end - ray.start) * t;
        bool inside = Length(normal) != 0.0f && d1 < 0.0f;
        for (std::size_t i = 0; i < 3; ++i)
            inside = inside && Dot(hit - p[i], Normalized(Cross(n, p[(i + 1) % 3] - p[i]))) <= epsilon;
        if (inside) {
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
