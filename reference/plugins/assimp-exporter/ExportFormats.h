#pragma once

// Private to the exporter: what Assimp can write so that others can read it.

#include "reference/host/IModelExporter.h"

namespace Host {

/// What is peculiar to a format, in Assimp's hands.
struct ExportTraits {
    const char* assimpId;
    bool hasTree;      ///< Keeps nodes and their matrices; else meshes are written where they stand.
    bool embedsImages; ///< Can hold images itself.
    bool isInMeters;   ///< Its unit is fixed. All others keep that of the scene.
    bool hasMaterials; ///< Keeps more than shapes.
    bool isLinear;     ///< Has colours in linear light; all others as a screen shows them.
};

/// In the order of the traits. Formats that Assimp writes but nothing can read
/// back, or that lose meshes on the way, are not among them.
const std::vector<sModelExportFormat>& ExportFormats();

/// \pre `nFormat` is less than the number of formats
const ExportTraits& TraitsOf(std::size_t nFormat);

} // namespace Host
