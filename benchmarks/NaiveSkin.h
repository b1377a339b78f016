#pragma once

#include "lumenta/skin/Scene.h"

/// The definitions: every hot path as a plain scalar loop, in the order of
/// operations that the library promises. Benchmarks run them beside the
/// library, tests compare bit by bit.
namespace Naive {

void Multiply(Matrix& result, const Matrix& a, const Matrix& b);
bool Inverse(Matrix& destination, const Matrix& source);

void CalculateAnimation(SkinAnimation::Scene& scene, const SkinAnimation::Animation& animation, float time);

void UpdateMesh(SkinAnimation::Geometry& geometry, const SkinAnimation::Node& node, const TVec3<float>& scale,
                const TVec3<float>& offset, const std::vector<SkinAnimation::Node*>& bones);

void CollectNormals(const SkinAnimation::Geometry& geometry, std::vector<TVec3<float>>& normals);

void NormalizeAll(std::vector<TVec3<float>>& normals);

void SetNormals(SkinAnimation::Geometry& geometry, const std::vector<TVec3<float>>& normals);

/// What Scene::CreateMeshes() does before it hands meshes over, to every geometry.
void PoseMeshes(const SkinAnimation::Scene& scene);

} // namespace Naive
