#pragma once

#include "lumenta/foundation/Matrix.h"
#include "lumenta/scene/Ray.h"
#include "lumenta/skin/Scene.h"

#include <memory>

/// The same work by packaged libraries, in their own manner: results are near
/// ours, not bit by bit. And what only walking through the memory takes.
namespace Peers {

void MultiplyWithGlm(std::vector<Matrix>& results, const std::vector<Matrix>& a, const std::vector<Matrix>& b);
void MultiplyWithEigen(std::vector<Matrix>& results, const std::vector<Matrix>& a, const std::vector<Matrix>& b);
void InvertWithGlm(std::vector<Matrix>& results, const std::vector<Matrix>& sources);
void InvertWithEigen(std::vector<Matrix>& results, const std::vector<Matrix>& sources);

/// Geometry::UpdateMesh() for skinned geometries, with one blended matrix a vertex.
void UpdateMeshWithEigen(SkinAnimation::Geometry& geometry, const SkinAnimation::Node& node,
                         const SkinAnimation::Scene& scene);

/// Reads every vertex, and writes what UpdateMesh() writes.
void TouchVertices(SkinAnimation::Geometry& geometry);

/// Ray::Trace() as a loop over Möller and Trumbore's test, as glm has it.
float TraceWithGlm(const Ray& ray, const IMesh& mesh);

/// Reads the whole mesh.
std::uint64_t TouchMesh(const IMesh& mesh);

/// A mesh in Embree, on one thread. Reads the mesh's own memory.
class EmbreeMesh {
public:
    explicit EmbreeMesh(const IMesh& mesh);
    ~EmbreeMesh();

    float Trace(const Ray& ray) const;

private:
    struct Handles;
    std::unique_ptr<Handles> m_handles;
};

} // namespace Peers
