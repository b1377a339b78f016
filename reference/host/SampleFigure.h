#pragma once

#include "reference/host/Model.h"

namespace Host {

/// A small figure with jumper, scarf and hat that the program makes itself: the
/// model for when no file is at hand.
///
/// It stands on y = 0, about 1.3 high, and looks along +z; its left is +x. 21
/// bones; skinned geometries whose weights change smoothly at the joints, two
/// of which share their node's normal buffer; a hat that is rigid; a striped
/// texture, embedded as "stripes". Animations "walk" and "wave", each a cycle
/// that ends as it begins.
Model MakeSampleFigure();

} // namespace Host
