#include "reference/host/ModelReader.h"

#include "lumenta/foundation/Exceptions.h"

#include <exception>

namespace Host {

namespace {

/// No exception may pass through a signal, so one that the listener throws
/// waits until the loader has given up.
void Load(IModelLoader& loader, const QString& fileName, const Progress& progress)
{
    std::exception_ptr failure;
    const QObject listener; // its end is the end of the connection
    if (progress)
        QObject::connect(&loader, &IModelLoader::loadingProgress, &listener, [&](int percent) {
            if (failure)
                return;
            try {
                progress(percent);
            } catch (...) {
                failure = std::current_exception();
                loader.Cancel();
            }
        });
    try {
        loader.Load(fileName);
    } catch (const LoadingException&) {
        if (!failure)
            throw;
    }
    if (failure)
        std::rethrow_exception(failure);
}

} // namespace

Model ReadModel(IModelLoader& loader, const QString& fileName, const Progress& progress)
{
    Load(loader, fileName, progress);
    Model model;
    model.fileName = fileName;
    model.scene.reset(loader.TakeScene());
    if (!model.scene)
        throw LoadingException(
            QStringLiteral("The model '%1' can't be loaded: its loader gave no scene").arg(fileName));
    model.up = loader.GetUpAxis();
    model.millimetersPerUnit = loader.GetMillimetersPerUnit();
    model.materials = loader.GetMaterials();
    const QStringList names = loader.GetImageNames();
    for (const QString& name : names)
        model.embeddedImages.insert(name, loader.GetImage(name));
    model.metadata = loader.GetMetadata();
    model.warnings = loader.GetWarnings();
    return model;
}

} // namespace Host
