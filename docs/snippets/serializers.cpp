#include "docs/snippets/Snippets.h"

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/ISceneLoader.h"
#include "lumenta/platform/IImageSaver.h"
#include "lumenta/serializers/ImageHelpers.h"
#include "lumenta/serializers/SceneSerializers.h"

#include <memory>

//! [serializers]
/// Opens a scene file with the loader that its name asks for.
/// \return what could not be taken over
QStringList OpenScene(const ISerializersRegistry& registry, const QString& fileName, IScene& scene)
{
    const QSharedPointer<ISceneLoader> loader = CreateSceneLoader(&registry, fileName);
    if (!loader || !loader->CanLoad(fileName)) throw LoadingException(QStringLiteral("'%1' is no scene").arg(fileName));
    loader->Load(fileName, scene);
    return loader->GetWarnings();
}
//! [serializers]

//! [images]
/// Writes an image in the format that the file's name asks for.
void SaveImage(const IImageManager& manager, const IImage& image, const QString& fileName)
{
    const std::unique_ptr<IImageSaver> saver(CreateImageSaverByFilename(&manager, fileName));
    if (!saver) throw ImageFormatException(QStringLiteral("'%1' can't be written").arg(fileName));
    saver->Save(image, fileName, -1);
}
//! [images]
