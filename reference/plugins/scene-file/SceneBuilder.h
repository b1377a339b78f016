#pragma once

#include "reference/plugins/scene-file/StoredDocument.h"

#include <QStringList>

class IImageManager;
class IScene;

namespace Host {

/// Replaces what a scene holds by a document, in one batch. Meshes move out of
/// the document. Images that are loaded for it end with the scene, or when the
/// next document comes in.
/// \param pImages  may be null; then no image is loaded
/// \param warnings receives what could not be taken over
void BuildScene(StoredDocument& document, const QString& fileName, IScene& scene, IImageManager* pImages,
                QStringList& warnings);

} // namespace Host
