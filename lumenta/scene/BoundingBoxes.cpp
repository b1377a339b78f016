#include "lumenta/scene/BoundingBoxes.h"

#include "lumenta/foundation/Float4.h"
#include "lumenta/interfaces/IMesh.h"
#include "lumenta/scene/NodeHierarchy.h"
#include "lumenta/scene/PlacedWalk.h"

namespace {

TBBox<float> OwnBox(const INode& node)
{
    TBBox<float> box;
    if (const IMeshNode* const meshNode = AsMeshNode(node)) {
        meshNode->FillBBox(box);
    } else if (const ILightNode* const light = AsLightNode(node)) {
        // Each light multiplies its own way to the root: products handed down from
        // the root would round differently.
        Matrix global;
        GetNodeGlobalMatrix(global, &node);
        TVec3<float> position{0.0f, 0.0f, 0.0f};
        TransformPoint(position, global);
        const float r = light->GetRadius();
        box.Extend(position - TVec3<float>{r, r, r});
        box.Extend(position + TVec3<float>{r, r, r});
    }
    return box;
}

/// Extends `box` by the positions, moved as TransformPoint() does, the axes side
/// by side.
void ExtendByMoved(TBBox<float>& box, const std::vector<MeshVertex>& vertices, const Matrix& global)
{
    const Float4 rows[] = {Load4(global.m), Load4(global.m + 4), Load4(global.m + 8), Load4(global.m + 12)};
    Float4 low{box.min.x, box.min.y, box.min.z, 0.0f};
    Float4 high{box.max.x, box.max.y, box.max.z, 0.0f};
    for (const MeshVertex& vertex : vertices) {
        const TVec3<float>& p = vertex.position;
        const Float4 moved = rows[0] * Splat4(p.x) + rows[1] * Splat4(p.y) + rows[2] * Splat4(p.z) + rows[3];
        low = moved < low ? moved : low;
        high = moved > high ? moved : high;
    }
    Store3(box.min, low);
    Store3(box.max, high);
}

} // namespace

void UpdateBBoxRecursive(TBBox<float>& box, const INode* pNode, const Matrix& parentMatrix)
{
    TBBox<float> extended = box; // so that one whose walk fails stays as it was
    WalkPlaced(pNode, parentMatrix, [&extended](const INode& node, const Matrix& global) {
        const IMeshNode* const meshNode = AsMeshNode(node);
        if (!meshNode || !node.IsVisible())
            return;
        for (const IMesh* const mesh : meshNode->GetMeshes())
            ExtendByMoved(extended, mesh->GetVertices(), global);
    });
    box = extended;
}

TBBox<float> ComputeNodeBBox(const INode* pNode)
{
    TBBox<float> box = OwnBox(*pNode);
    for (const INode* const node : CollectAllChildren(pNode->GetChildren()))
        box.Extend(OwnBox(*node));
    return box;
}
