#include "lumenta/skin/Geometry.h"

#include "lumenta/kernels/Kernels.h"
#include "lumenta/platform/IMeshNodeBuilder.h"
#include "lumenta/skin/Node.h"
#include "lumenta/skin/SkinKernels.h"

#include <algorithm>

namespace SkinAnimation {

namespace {

bool SharesNormals(const Geometry& geometry, const std::vector<TVec3<float>>& normals)
{
    return !normals.empty() && !geometry.indices.empty()
        && geometry.normalIndices.size() == geometry.indices.size();
}

} // namespace

Geometry::Geometry(const QString& name_, bool skinned_)
    : name(name_)
    , skinned(skinned_)
{
}

void Geometry::UpdateMesh(const Node* node, const TVec3<float>& scale, const TVec3<float>& offset,
                          const std::vector<Node*>& bones)
{
    if (vertices.empty() || indices.empty())
        return;

    PoseInput input{skinned, node->bindTransform, {}, node->meshTransform, {}, scale, offset,
                    bones.data(), bones.size()};
    Inverse(input.bindInverse, input.bind);
    Inverse(input.meshInverse, input.mesh);

    const std::size_t before = meshVertices.size();
    meshVertices.resize(std::max(before, vertices.size()));
    try {
        PoseVertices(Kernels::Chosen(), input, vertices.data(), vertices.size(), meshVertices.data());
    } catch (...) {
        meshVertices.resize(before); // nobody shall take those that are not posed for posed ones
        throw;
    }
    meshVertices.resize(vertices.size());
}

void Geometry::CollectNormals(std::vector<TVec3<float>>& normals) const
{
    if (SharesNormals(*this, normals))
        Kernels::Chosen().addFaceNormals(meshVertices.data(), indices.data(), normalIndices.data(), indices.size() / 3,
                                         normals.data());
}

void Geometry::SetNormals(std::vector<TVec3<float>>& normals)
{
    if (!SharesNormals(*this, normals))
        return;
    SetCornerNormals(indices.data(), normalIndices.data(), indices.size(), normals.data(), meshVertices.data(),
                     meshVertices.size());
}

void Geometry::AddMesh(IMeshNodeBuilder& builder) const
{
    if (meshVertices.empty() || indices.empty() || !visible)
        return;
    // Emission leaves the geometry as it is; only the builder may touch its
    // vectors, and geometries are never const objects.
    Geometry& self = const_cast<Geometry&>(*this);
    builder.AddMeshNode(name, self.meshVertices, self.indices, materialName, materialParameters);
}

} // namespace SkinAnimation
