#include "benchmarks/NaiveScene.h"
#include "benchmarks/SceneStandIns.h"
#include "fuzz/Skeleton.h"
#include "lumenta/scene/BoundingBoxes.h"
#include "lumenta/scene/Picking.h"

// Any pixel of any view into scenes of any numbers: what the plain definition
// picks, and the same point of it; and the same boxes about it all.

using Fuzz::Require;
using Vec3 = TVec3<float>;

namespace {

/// A scene with its nodes, whom nobody else owns.
struct World {
    StandIn::Scene scene;
    std::vector<std::unique_ptr<StandIn::Mesh>> meshes;
    std::vector<std::unique_ptr<StandIn::Node>> nodes;

    explicit World(Fuzz::Input& input)
    {
        for (std::uint32_t i = input.Below(10); i > 0; --i)
            AddNode(input);
        StandIn::Camera& camera = scene.camera;
        camera.matrix = Fuzz::Transform(input);
        camera.state.fieldOfView = input.Flag() ? 60.0f : input.Float() * 16.0f;
        camera.state.frameAspect = input.Flag() ? 1.5f : input.Float();
        scene.hasGround = input.Flag();
    }

    void AddNode(Fuzz::Input& input)
    {
        const std::size_t nParent = input.Byte() % (nodes.size() + 1);
        StandIn::Node* const pParent = nParent == nodes.size() ? &scene.root : nodes[nParent].get();
        const int type = static_cast<int>(input.Below(4));
        StandIn::Node& node =
            *nodes.emplace_back(std::make_unique<StandIn::Node>(type, pParent, Fuzz::Transform(input)));
        node.casts = input.Below(8) != 7;
        node.visible = input.Below(8) != 7;
        node.excluded = input.Below(8) == 7;
        if (type == eNodeTypeLight) node.radius = input.Float();
        for (std::uint32_t i = type == eNodeTypeMesh ? input.Below(3) : 0; i > 0; --i)
            AddMesh(input, node);
        if (input.Below(8) == 7) node.localBox = node.worldBox = {Fuzz::Vector(input), Fuzz::Vector(input)};
    }

    void AddMesh(Fuzz::Input& input, StandIn::Node& node)
    {
        std::vector<Vec3> corners(3 * input.Below(8));
        for (Vec3& corner : corners)
            corner = Fuzz::Vector(input) * (input.Flag() ? 1.0f : 0.1f);
        node.Add(*meshes.emplace_back(std::make_unique<StandIn::Mesh>(corners)));
    }
};

bool IsSame(const Vec3& a, const Vec3& b)
{
    return Bench::SameBits(std::vector<Vec3>{a}, std::vector<Vec3>{b});
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::Input input(data, size);
    World world(input);
    StandIn::Scene& scene = world.scene;
    const TVec2<float> viewSize = input.Flag() ? TVec2<float>{8.0f, 6.0f} : TVec2<float>{input.Float(), input.Float()};
    const QPoint point = input.Flag() ? QPoint(static_cast<int>(input.Below(9)), static_cast<int>(input.Below(7)))
                                      : QPoint(input.Raw<int>(), input.Raw<int>());

    const Naive::Picked plain = Naive::Pick(point, viewSize, scene);
    INode* pNode = &scene.root;
    const IMesh* pMesh = nullptr;
    FindNodeByScreenPoint(point, viewSize, scene, pNode, pMesh);
    Require(pNode == plain.node && pMesh == plain.mesh, "the same is picked");

    Vec3 where{1.0f, 2.0f, 3.0f};
    const Vec3 before = where;
    const bool isFound = FindIntersectionByScreenPoint(point, viewSize, scene, where);
    if (!scene.hasGround) {
        Require(isFound == (plain.node != nullptr), "a point is that of what is picked");
        Require(IsSame(where, isFound ? plain.ray.end : before), "the same point is picked");
    }

    TBBox<float> box, plainBox;
    UpdateBBoxRecursive(box, &scene.root, Matrix());
    Naive::UpdateBBoxRecursive(plainBox, &scene.root, Matrix());
    Require(IsSame(box.min, plainBox.min) && IsSame(box.max, plainBox.max), "boxes are the same");
    ComputeNodeBBox(&scene.root);
    return 0;
}
