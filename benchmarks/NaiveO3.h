#pragma once

#include "benchmarks/NaiveScene.h"
#include "benchmarks/NaiveSkin.h"

/// The same sources, compiled with -O3 under another name.
namespace NaiveO3 {

decltype(Naive::Multiply) Multiply;
decltype(Naive::Inverse) Inverse;
decltype(Naive::CalculateAnimation) CalculateAnimation;
decltype(Naive::UpdateMesh) UpdateMesh;
decltype(Naive::CollectNormals) CollectNormals;
decltype(Naive::NormalizeAll) NormalizeAll;
decltype(Naive::SetNormals) SetNormals;
decltype(Naive::PoseMeshes) PoseMeshes;
decltype(Naive::Trace) Trace;

} // namespace NaiveO3
