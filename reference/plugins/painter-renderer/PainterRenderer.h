#pragma once

#include "reference/host/Picture.h"

#include <memory>

namespace Host {

/// Quick pictures that need nothing but Qt: shaded triangles, painted from back
/// to front.
std::unique_ptr<IPictureRenderer> CreatePainterRenderer();

} // namespace Host
