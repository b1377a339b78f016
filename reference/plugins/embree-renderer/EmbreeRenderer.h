#pragma once

#include "reference/host/Picture.h"

#include <memory>

namespace Host {

/// Ray-traced pictures: sun, sky and lamps, soft shadows, a ground, smooth
/// shading, mirrors, bumps, antialiasing. What passes through glass goes on
/// straight. The same request gives the same bits with any number of threads.
std::unique_ptr<IPictureRenderer> CreateEmbreeRenderer();

} // namespace Host
