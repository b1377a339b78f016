#pragma once

#include "benchmarks/SceneStandIns.h"
#include "matrix/Trials.h"

#include <memory>

namespace Trials {

/// A scene of triangles and lights, some of them hidden, odd or under singular
/// matrices, about the origin; with its camera beside them.
struct World {
    StandIn::Scene scene;
    std::vector<std::unique_ptr<StandIn::Mesh>> meshes;
    std::vector<std::unique_ptr<StandIn::Node>> nodes;

    World(Random& random, std::size_t nodeCount);

    /// Counted from 1; 0 for null.
    int NumberOf(const INode* node) const;
    int NumberOf(const IMesh* mesh) const;

private:
    void AddNode(Random& random);
};

/// Triangles of about `size` within `reach` of the origin.
std::unique_ptr<StandIn::Mesh> AnyMesh(Random& random, std::size_t triangleCount, float reach, float size);

} // namespace Trials
