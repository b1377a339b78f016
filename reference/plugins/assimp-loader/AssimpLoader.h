#pragma once

#include "reference/host/Model.h"
#include "reference/host/Progress.h"

struct aiScene;

namespace Host {

/// Reads any model file that Assimp reads.
/// \throws FileException     the file is missing, a folder, unreadable or empty
/// \throws LoadingException  Assimp cannot make sense of it, or it holds no mesh;
///                           the text names the file and what is wrong
Model LoadModel(const QString& strFileName, const Progress& progress = {});

/// The same from an imported scene, which must have been imported with
/// AssimpImportFlags(). `strFileName` is for the texts only.
Model ModelFromAssimp(const aiScene& source, const QString& strFileName);

/// The post-processing that loading relies on. It neither joins nor reorders
/// vertices behind the loader's back.
unsigned int AssimpImportFlags();

} // namespace Host
