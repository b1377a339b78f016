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

/// A ray on its way through the tree, clipped at whatever is hit.
class Tracer {
public:
    explicit Tracer(const Ray& ray)
        : m_ray(ray)
    {
        SpreadEnds();
    }

    const Ray& GetRay() const { return m_ray; }
    const Hit& GetHit() const { return m_hit; }

    /// Clips the ray at the nearest visible thing under `root`. Only what is
    /// nearer than all before it can still be hit.
    void Trace(INode* root)
    {
        WalkPlaced(root, Matrix(), [this](INode& node, const Matrix& global) {
            if (!node.IsVisible())
                return;
            if (const IMeshNode* const meshNode = AsMeshNode(node))
                TraceMeshes(node, *meshNode, global);
            else if (const ILightNode* const light = AsLightNode(node))
                TraceLight(node, *light, global);
        });
    }

private:
    void TraceMeshes(INode& node, const IMeshNode& meshNode, const Matrix& global)
    {
        Vec3 ends[2];
        if (!m_kernels.meetBox(global.m, m_ends, meshNode.GetBBox(), ends))
            return;
        Ray local(ends[0], ends[1]);
        const IMesh* nearest = nullptr;
        float f = 1.0f;
        for (const IMesh* const mesh : meshNode.GetMeshes()) {
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
            ClipAt(f, {&node, nearest});
    }

    void TraceLight(INode& node, const ILightNode& light, const Matrix& global)
    {
        const float t = m_ray.Trace(global.GetTranslation(), light.GetRadius());
        if (t < 1.0f)
            ClipAt(t, {&node, nullptr});
    }

    void ClipAt(float t, const Hit& hit)
    {
        m_ray.Clip(t);
        m_hit = hit;
        SpreadEnds();
    }

    void SpreadEnds()
    {
        for (int i = 0; i < 8; ++i) {
            const Vec3& end = i < 4 ? m_ray.start : m_ray.end;
            m_ends.x[i] = end.x;
            m_ends.y[i] = end.y;
            m_ends.z[i] = end.z;
        }
    }

    const Kernels::Table& m_kernels = Kernels::Chosen();
    Ray m_ray;
    Kernels::SegmentEnds m_ends; ///< Of the ray.
    Hit m_hit;
};

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
    Tracer tracer(PickRay(point, viewSize, *scene.GetCamera()));
    tracer.Trace(scene.GetRoot());
    pNode = tracer.GetHit().node;
    pMesh = tracer.GetHit().mesh;
}

bool FindIntersectionByScreenPoint(const QPoint& point, const TVec2<float>& viewSize, IScene& scene,
                                   TVec3<float>& result)
{
    const Ray whole = PickRay(point, viewSize, *scene.GetCamera());
    Tracer tracer(whole);
    tracer.Trace(scene.GetRoot());
    const bool isHit = tracer.GetHit().node != nullptr;
    if (isHit)
        result = tracer.GetRay().end;
    if (!scene.IsGroundPlaneEnabled() || (isHit && IsBeforeGround(whole.start, result)))
        return isHit;
    return MeetGround(whole, result);
}
