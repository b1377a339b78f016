#include "lumenta/scene/Picking.h"

#include "lumenta/foundation/CameraMatrices.h"
#include "lumenta/interfaces/IFreeCamera.h"
#include "lumenta/interfaces/IMesh.h"
#include "lumenta/interfaces/IScene.h"
#include "lumenta/scene/PlacedWalk.h"
#include "lumenta/scene/Ray.h"

#include <cmath>

namespace {

using Vec3 = TVec3<float>;

constexpr float kReach = 10000.0f;
constexpr float kNear = 0.1f;
constexpr float kFar = 1000.0f;

struct Hit {
    INode* node = nullptr;
    const IMesh* mesh = nullptr;
};

Ray PickRay(const QPoint& point, const TVec2<float>& viewSize, const IFreeCamera& camera)
{
    const float nx = 2.0f * (static_cast<float>(point.x()) / viewSize.x) - 1.0f;
    const float ny = 2.0f * (static_cast<float>(point.y()) / viewSize.y) - 1.0f;
    const Matrix& placement = camera.GetMatrix();
    Matrix projection;
    CalculateProjectionMatrix(projection, camera.GetFieldOfView(), camera.GetFrameAspect(), viewSize.x / viewSize.y,
                              kNear, kFar);

    // The camera looks along its own x; y points left and z up, pixels run right and down.
    Vec3 direction{1.0f, -nx / projection.m[0], -ny / projection.m[5]};
    TransformDirection(direction, placement);
    const Vec3 position = placement.GetTranslation();
    return {position, position + Normalized(direction) * kReach};
}

/// Clips `ray` at the nearest mesh of `node`.
/// \return that mesh, or null for a miss
const IMesh* ClipAtMeshes(Ray& ray, const IMeshNode& node, const Matrix& global)
{
    Matrix inverse;
    if (!Inverse(inverse, global))
        return nullptr;
    Vec3 start = ray.start;
    Vec3 end = ray.end;
    TransformPoint(start, inverse);
    TransformPoint(end, inverse);
    Ray local(start, end);
    if (!local.IsIntersect(node.GetBBox()))
        return nullptr;

    const IMesh* nearest = nullptr;
    float f = 1.0f;
    for (const IMesh* const mesh : node.GetMeshes()) {
        if (!local.IsIntersect(mesh->GetBBox()))
            continue;
        const float t = local.Trace(*mesh);
        if (t < 1.0f) {
            local.Clip(t);
            f = f * t;
            nearest = mesh;
        }
    }
    if (nearest)
        ray.Clip(f);
    return nearest;
}

bool ClipAtLight(Ray& ray, const ILightNode& light, const Matrix& global)
{
    const float t = ray.Trace(global.GetTranslation(), light.GetRadius());
    if (!(t < 1.0f))
        return false;
    ray.Clip(t);
    return true;
}

/// Clips `ray` at the nearest visible thing under `root`. Only what is nearer
/// than all before it can still be hit.
Hit TraceTree(Ray& ray, INode* root)
{
    Hit hit;
    WalkPlaced(root, Matrix(), [&](INode& node, const Matrix& global) {
        if (!node.IsVisible())
            return;
        if (const IMeshNode* const meshNode = AsMeshNode(node)) {
            if (const IMesh* const mesh = ClipAtMeshes(ray, *meshNode, global))
                hit = {&node, mesh};
        } else if (const ILightNode* const light = AsLightNode(node)) {
            if (ClipAtLight(ray, *light, global))
                hit = {&node, nullptr};
        }
    });
    return hit;
}

/// Whether the ground doesn't lie between the start of a ray and its hit.
bool IsBeforeGround(const Vec3& start, const Vec3& hit)
{
    return (start.z > 0.0f && hit.z >= 0.0f) || (start.z < 0.0f && hit.z <= 0.0f);
}

bool MeetGround(const Ray& ray, Vec3& result)
{
    const Vec3 direction = Normalized(ray.end - ray.start);
    const float t = -ray.start.z / direction.z;
    const Vec3 point = ray.start + direction * t;
    // Along the ground t is infinite or no number, and so is the point.
    if (!(t > 0.0f) || !std::isfinite(point.x) || !std::isfinite(point.y) || !std::isfinite(point.z))
        return false;
    result = point;
    return true;
}

} // namespace

void FindNodeByScreenPoint(const QPoint& point, const TVec2<float>& viewSize, IScene& scene, INode*& pNode,
                           const IMesh*& pMesh)
{
    pNode = nullptr;
    pMesh = nullptr;
    Ray ray = PickRay(point, viewSize, *scene.GetCamera());
    const Hit hit = TraceTree(ray, scene.GetRoot());
    pNode = hit.node;
    pMesh = hit.mesh;
}

bool FindIntersectionByScreenPoint(const QPoint& point, const TVec2<float>& viewSize, IScene& scene,
                                   TVec3<float>& result)
{
    const Ray whole = PickRay(point, viewSize, *scene.GetCamera());
    Ray ray = whole;
    const bool isHit = TraceTree(ray, scene.GetRoot()).node != nullptr;
    if (isHit)
        result = ray.end;
    if (!scene.IsGroundPlaneEnabled() || (isHit && IsBeforeGround(whole.start, result)))
        return isHit;
    return MeetGround(whole, result);
}
