#pragma once

#include "reference/host/SceneRender.h"

namespace Host {

/// Draws scenes as CreatePainterRenderer() does requests.
class PainterRender final : public SceneRender {
public:
    PainterRender();
};

} // namespace Host
