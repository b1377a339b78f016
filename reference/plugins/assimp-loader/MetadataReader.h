#pragma once

// Private to the loader: what a file says about itself.

#include "lumenta/foundation/Vector.h"

#include <QMap>
#include <QString>
#include <QVariant>

struct aiScene;

namespace Host {

/// Everything, under the names that Assimp gives it: "SourceAsset_Generator",
/// "SourceAsset_Copyright", "UnitScaleFactor", ... Groups of values are
/// "group.name"; of points there are three numbers.
QMap<QString, QVariant> ReadMetadata(const aiScene& source);

/// Of length 1; y where the file doesn't say.
TVec3<float> UpAxisOf(const aiScene& source);

/// The unit that positions have after Assimp has read them; 0 where nothing
/// tells. FBX says it, in centimetres, and Assimp assumes one where an FBX file
/// doesn't; glTF is always in metres, and so is Collada once Assimp has scaled
/// its root node.
float MillimetersPerUnitOf(const aiScene& source);

/// Whether colours are in linear light, as glTF has them since its second
/// version; those of other formats are as a screen shows them.
bool HasLinearColors(const aiScene& source);

} // namespace Host
