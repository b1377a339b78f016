#include "reference/plugins/painter-renderer/PainterRender.h"

#include "reference/plugins/painter-renderer/PainterRenderer.h"

namespace Host {

PainterRender::PainterRender()
    : SceneRender(CreatePainterRenderer())
{
}

} // namespace Host
