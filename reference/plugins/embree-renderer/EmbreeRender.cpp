#include "reference/plugins/embree-renderer/EmbreeRender.h"

#include "reference/plugins/embree-renderer/EmbreeRenderer.h"

namespace Host {

EmbreeRender::EmbreeRender()
    : SceneRender(CreateEmbreeRenderer())
{
}

} // namespace Host
