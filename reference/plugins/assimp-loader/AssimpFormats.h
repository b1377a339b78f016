#pragma once

// Private to the loader: what Assimp can read.

#include "lumenta/interfaces/IModelLoader.h"

#include <vector>

namespace Host {

/// One for each of Assimp's importers, by title. An importer that reads no
/// extension of its own, like that of a format's second version, goes with the
/// first one of these extensions.
const std::vector<ModelFormatInfo>& AssimpFormats();

} // namespace Host
