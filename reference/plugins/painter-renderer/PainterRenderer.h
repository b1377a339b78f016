#pragma once

#include "reference/host/Picture.h"

#include <memory>

namespace Host {

/// Quick pictures that need nothing but Qt: shaded triangles, of which each pixel
/// shows the nearest. Meshes cast the sun's and the sky's shadows on the floor,
/// none on one another; there are no mirrors and no bumps.
std::unique_ptr<IPictureRenderer> CreatePainterRenderer();

} // namespace Host
