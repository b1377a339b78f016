#include "docs/snippets/Snippets.h"

#include "lumenta/foundation/Matrix.h"
#include "lumenta/interfaces/IMesh.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/interfaces/INode.h"
#include "lumenta/scene/NodeHierarchy.h"
#include "lumenta/scene/Ray.h"

#include <algorithm>

//! [rays]
/// How far a node is from one point towards another; nothing if it isn't in between.
std::optional<float> DistanceTo(const INode& node, const TVec3<float>& from, const TVec3<float>& to)
{
    const IMeshNode* const pMeshNode = qobject_cast<IMeshNode*>(&node);
    Matrix world;
    GetNodeGlobalMatrix(world, &node);
    Matrix inverse;
    if (!pMeshNode || !Inverse(inverse, world)) return std::nullopt;

    // Meshes are asked in their own space. Parameters are the same in both.
    TVec3<float> start = from;
    TVec3<float> end = to;
    TransformPoint(start, inverse);
    TransformPoint(end, inverse);
    const Ray ray(start, end);
    float nearest = 1.0f;
    for (const IMesh* const pMesh : pMeshNode->GetMeshes()) {
        if (ray.IsIntersect(pMesh->GetBBox())) nearest = std::min(nearest, ray.Trace(*pMesh));
    }
    if (!(nearest < 1.0f)) return std::nullopt;
    return nearest * Length(to - from);
}
//! [rays]
