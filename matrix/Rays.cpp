#include "lumenta/scene/BoundingBoxes.h"
#include "lumenta/scene/NodeHierarchy.h"
#include "lumenta/scene/Ray.h"
#include "matrix/World.h"

// Rays, and boxes about scenes.

namespace Trials {

namespace {

constexpr int kRounds = 20000;

/// Through, or past, a point near the origin.
Ray AnyRay(Random& random)
{
    const Vec3 start = AnyVector(random);
    const Vec3 middle = Workloads::RandomVector(random, -2.0f, 2.0f);
    if (random.Below(8) == 0) return {start, AnyVector(random)};
    return {start, middle + (middle - start)};
}

void Segments(Random& random, Sum& sum)
{
    for (int i = 0; i < kRounds; ++i) {
        Ray ray = AnyRay(random);
        sum.Add(ray);
        ray.Clip(random.Below(4) == 0 ? AnyFloat(random) : random.Between(0.0f, 1.0f));
        sum.Add(ray);
    }
}

void Spheres(Random& random, Sum& sum)
{
    for (int i = 0; i < kRounds; ++i) {
        const Ray ray = AnyRay(random);
        const Vec3 centre = random.Below(8) == 0 ? AnyVector(random) : Workloads::RandomVector(random, -3.0f, 3.0f);
        const float radius = random.Below(8) == 0 ? AnyFloat(random) : random.Between(0.1f, 4.0f);
        sum.Add(ray.IsIntersect(centre, radius));
        sum.Add(ray.Trace(centre, radius));
    }
}

void Boxes(Random& random, Sum& sum)
{
    for (int i = 0; i < kRounds; ++i) {
        const Ray ray = AnyRay(random);
        TBBox<float> box;
        box.Extend(Workloads::RandomVector(random, -3.0f, 3.0f));
        if (random.Below(8) != 0) box.Extend(AnyVector(random));
        if (random.Below(16) == 0) box.min = AnyVector(random);
        sum.Add(ray.IsIntersect(box));
        sum.Add(ray.Trace(box));
    }
}

void Meshes(Random& random, Sum& sum)
{
    for (int i = 0; i < kRounds / 40; ++i) {
        const auto mesh = AnyMesh(random, random.Below(100), 3.0f, 2.0f);
        for (int k = 0; k < 50; ++k)
            sum.Add(AnyRay(random).Trace(*mesh));
    }
}

void SceneBoxes(Random& random, Sum& sum)
{
    for (int i = 0; i < 100; ++i) {
        const World world(random, 20);
        TBBox<float> box;
        UpdateBBoxRecursive(box, &world.scene.root, AnyTransform(random));
        sum.Add(box);
        sum.Add(ComputeNodeBBox(&world.scene.root));
        for (const auto& node : world.nodes) {
            Matrix global;
            GetNodeGlobalMatrix(global, node.get());
            sum.Add(global);
            sum.Add(ComputeNodeBBox(node.get()));
        }
    }
}

} // namespace

std::vector<Trial> Rays()
{
    return {{"rays", "Ray, Ray::Clip", Segments},
            {"rays", "a ray and a sphere", Spheres},
            {"rays", "a ray and a box", Boxes},
            {"rays", "a ray and a mesh", Meshes},
            {"boxes", "UpdateBBoxRecursive, ComputeNodeBBox, GetNodeGlobalMatrix", SceneBoxes}};
}

} // namespace Trials
