#pragma once

#include "reference/host/Picture.h"

#include <memory>

namespace Host {

/// Ray-traced pictures: sun and sky, soft shadows, a ground, smooth shading,
/// antialiasing. The same request gives the same bits with any number of threads.
std::unique_ptr<IPictureRenderer> CreateEmbreeRenderer();

} // namespace Host
