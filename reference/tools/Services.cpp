#include "reference/tools/Services.h"

#include "lumenta/foundation/Exceptions.h"
#include "reference/plugins/assimp-loader/AssimpLoader.h"
#include "reference/plugins/embree-renderer/EmbreeRenderer.h"
#include "reference/plugins/painter-renderer/PainterRenderer.h"

namespace Host {

namespace {

struct Renderer {
    const char* name;
    std::unique_ptr<IPictureRenderer> (*create)();
};

constexpr Renderer kRenderers[] = {{"embree", CreateEmbreeRenderer}, {"painter", CreatePainterRenderer}};

} // namespace

Model ReadModel(const QString& fileName, const Progress& progress)
{
    return LoadModel(fileName, progress);
}

QStringList RendererNames()
{
    QStringList names;
    for (const Renderer& renderer : kRenderers)
        names += QLatin1String(renderer.name);
    return names;
}

std::unique_ptr<IPictureRenderer> CreateRenderer(const QString& name)
{
    for (const Renderer& renderer : kRenderers)
        if (name == QLatin1String(renderer.name))
            return renderer.create();
    throw FactoryException(name);
}

} // namespace Host
