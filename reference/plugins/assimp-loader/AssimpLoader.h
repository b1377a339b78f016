#pragma once

#include "reference/host/Model.h"
#include "reference/host/Progress.h"

struct aiScene;

namespace Host {

constexpr double kUsualTicksPerSecond = 25.0;

/// Reads any model file that Assimp reads.
///
/// The tree comes out as it is in the file, at rest as the file has it, every
/// mesh below each node that shows it. A vertex follows the four strongest of
/// its bones, posed exactly as the bones' offset matrices say. Where one bone
/// is bound in several ways, helper nodes stand below it, at the end of
/// Scene::nodes. Meshes without normals get smooth ones from their triangles.
/// Below a matrix that mirrors, triangles are turned so that they face outwards
/// at rest; an animation that begins or ends to mirror turns them inside out.
/// Each animation of the file becomes one with a single layer; a file that does
/// not tell the length of a tick is played at `ticksPerSecond`, which is positive
/// and finite. Morph targets, cameras and lights are left out.
///
/// Bones and animations find their node by its name, which need not be unique:
/// then the best guess is taken, and a warning says so.
///
/// What `progress` throws ends the loading and arrives at the caller.
/// \throws FileException     the file is missing, a folder, unreadable or empty
/// \throws LoadingException  Assimp cannot make sense of it, it holds no usable
///                           triangles, or a bone lies beyond node 65536; the
///                           text names the file and what is wrong
Model LoadModel(const QString& strFileName, const Progress& progress = {},
                double ticksPerSecond = kUsualTicksPerSecond);

/// The same from an imported scene, which must have been imported with
/// AssimpImportFlags(). `strFileName` is for the texts only.
Model ModelFromAssimp(const aiScene& source, const QString& strFileName,
                      double ticksPerSecond = kUsualTicksPerSecond);

/// The post-processing that loading relies on. It neither joins nor reorders
/// vertices behind the loader's back.
unsigned int AssimpImportFlags();

} // namespace Host
