#include "matrix/World.h"

#include <algorithm>

namespace Trials {

std::unique_ptr<StandIn::Mesh> AnyMesh(Random& random, std::size_t triangleCount, float reach, float size)
{
    std::vector<Vec3> corners;
    for (std::size_t i = 0; i < triangleCount; ++i) {
        const Vec3 a = Workloads::RandomVector(random, -reach, reach);
        corners.push_back(a);
        corners.push_back(a + Workloads::RandomVector(random, -size, size));
        corners.push_back(a + Workloads::RandomVector(random, -size, size));
        if (random.Below(40) == 0) corners.back() = AnyVector(random);
        if (random.Below(40) == 0) corners.back() = a; // without area
    }
    return std::make_unique<StandIn::Mesh>(corners);
}

World::World(Random& random, std::size_t nodeCount)
{
    for (std::size_t i = 0; i < nodeCount; ++i)
        AddNode(random);
    scene.hasGround = random.Below(2) != 0;

    // Looks along x, tilted by a rotation of whole thousandths.
    StandIn::Camera& camera = scene.camera;
    const float tilt[] = {0.936f, 0.352f};
    camera.matrix(0, 0) = camera.matrix(2, 2) = tilt[0];
    camera.matrix(0, 2) = -tilt[1];
    camera.matrix(2, 0) = tilt[1];
    camera.matrix.SetTranslation({-25.0f, random.Between(-3.0f, 3.0f), 9.0f});
    camera.state.frameAspect = random.Between(0.5f, 2.5f);
}

void World::AddNode(Random& random)
{
    const std::uint32_t above = random.Below(static_cast<std::uint32_t>(nodes.size()) + 4);
    StandIn::Node* const parent = above < nodes.size() ? nodes[above].get() : &scene.root;
    static constexpr int kTypes[] = {eNodeTypeMesh, eNodeTypeMesh, eNodeTypeMesh, eNodeTypeLight, eNodeTypeGroup};
    const int type = kTypes[random.Below(5)];
    const Matrix place = random.Below(8) == 0 ? AnyTransform(random) : TameTransform(random);
    StandIn::Node& node = *nodes.emplace_back(std::make_unique<StandIn::Node>(type, parent, place));
    node.visible = random.Below(8) != 0;
    node.excluded = random.Below(16) == 0;
    if (type == eNodeTypeLight) node.radius = random.Below(8) == 0 ? AnyFloat(random) : random.Between(0.1f, 3.0f);
    for (std::uint32_t i = type == eNodeTypeMesh ? random.Below(3) : 0; i > 0; --i)
        node.Add(*meshes.emplace_back(AnyMesh(random, random.Below(30), 3.0f, 3.0f)));
    node.worldBox = node.localBox;
}

int World::NumberOf(const INode* node) const
{
    const auto found =
        std::find_if(nodes.begin(), nodes.end(), [node](const auto& each) { return each.get() == node; });
    return found == nodes.end() ? 0 : 1 + static_cast<int>(found - nodes.begin());
}

int World::NumberOf(const IMesh* mesh) const
{
    const auto found =
        std::find_if(meshes.begin(), meshes.end(), [mesh](const auto& each) { return each.get() == mesh; });
    return found == meshes.end() ? 0 : 1 + static_cast<int>(found - meshes.begin());
}

} // namespace Trials
