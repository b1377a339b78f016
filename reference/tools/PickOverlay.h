#pragma once

#include "reference/tools/PickMap.h"

namespace Host {

/// A pixel to be marked, and what is written beside it.
struct PixelMark {
    QPoint pixel;
    Picked picked;
    QString label;
};

/// Marks pixels in the picture that was drawn of the map's view: the meshes
/// that they hit are tinted and outlined in the colour of their node, each pixel gets
/// a cross-hair, and a label where text can be written.
QImage DrawOverlay(const QImage& picture, const PickMap& map, const NodeColours& colours,
                   const std::vector<PixelMark>& marks);

} // namespace Host
