#pragma once

#include "reference/host/SceneRender.h"

namespace Host {

/// Draws scenes as CreateEmbreeRenderer() does requests.
class EmbreeRender final : public SceneRender {
public:
    EmbreeRender();
};

} // namespace Host
