#pragma once

#include "reference/host/Picture.h"

#include <memory>

namespace Host {

/// Quick pictures that need nothing but Qt: shaded triangles, of which each pixel
/// shows the nearest. Meshes cast shadows on the floor, not on one another.
std::unique_ptr<IPictureRenderer> CreatePainterRenderer();

} // namespace Host
