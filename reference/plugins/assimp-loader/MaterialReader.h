#pragma once

// Private to the loader: materials and embedded images.

#include "reference/host/Model.h"

#include <vector>

struct aiScene;

namespace Host {

class Report;

struct ReadMaterial {
    Material material;
    unsigned int textureChannel = 0; ///< Which texture coordinates the colour texture uses.
};

/// All materials of the file, in its order. The images that the file carries
/// are decoded into `images`: by the name that a material gives them, others
/// by their own file name, or "*" and their number.
std::vector<ReadMaterial> ReadMaterials(const aiScene& source, QMap<QString, QImage>& images, Report& report);

} // namespace Host
