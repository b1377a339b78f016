#pragma once

#include "lumenta/interfaces/IScene.h"
#include "lumenta/scene/Ray.h"

#include <QPoint>

/// The definitions of the scene's walks and of tracing a mesh: recursive,
/// searching lists from the front, one line a step. For shallow trees.
namespace Naive {

std::vector<INode*> CollectAllChildren(const std::vector<INode*>& nodes);

std::vector<INode*> SortAccordingToTheSceneTree(const std::vector<INode*>& nodes, INode* root, bool reverse);

bool IsIntersect(const Ray& ray, const TBBox<float>& box);

float Trace(const Ray& ray, const IMesh& mesh);

void UpdateBBoxRecursive(TBBox<float>& box, const INode* node, const Matrix& parentMatrix);

/// A ray clipped at what it picks; a miss is null and null.
struct Picked {
    Ray ray;
    INode* node;
    const IMesh* mesh;
};

Picked Pick(const QPoint& point, const TVec2<float>& viewSize, const IScene& scene);

} // namespace Naive
