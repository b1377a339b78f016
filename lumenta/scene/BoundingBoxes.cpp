#include "lumenta/scene/BoundingBoxes.h"

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

} // namespace

void UpdateBBoxRecursive(TBBox<float>& box, const INode* pNode, const Matrix& parentMatrix)
{
    WalkPlaced(pNode, parentMatrix, [&box](const INode& node, const Matrix& global) {
        const IMeshNode* const meshNode = AsMeshNode(node);
        if (!meshNode || !node.IsVisible())
            return;
        for (const IMesh* const mesh : meshNode->GetMeshes()) {
            for (const MeshVertex& vertex : mesh->GetVertices()) {
                TVec3<float> position = vertex.position;
                TransformPoint(position, global);
                box.Extend(position);
            }
        }
    });
}

TBBox<float> ComputeNodeBBox(const INode* pNode)
{
    TBBox<float> box = OwnBox(*pNode);
    for (const INode* const node : CollectAllChildren(pNode->GetChildren()))
        box.Extend(OwnBox(*node));
    return box;
}
