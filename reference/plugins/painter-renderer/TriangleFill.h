#pragma once

#include <QPointF>
#include <QSize>

#include <algorithm>
#include <array>
#include <cmath>

namespace Host {

/// The first of `count` pixels whose centre is not before `from`; `count` where
/// there is none.
inline int FirstCentre(double from, int count)
{
    return static_cast<int>(std::clamp(std::ceil(from - 0.5), 0.0, static_cast<double>(count)));
}

/// Calls `visit(x, y)` for the pixels of a picture whose centres lie in a
/// triangle; for none where a corner is not finite. Of triangles that share an
/// edge only one gets a centre on it, and they leave no gap. A triangle out of
/// the picture costs next to nothing, however large it is.
template <typename Visitor>
void ForEachPixel(std::array<QPointF, 3> corners, QSize size, const Visitor& visit)
{
    for (const QPointF& corner : corners)
        if (!std::isfinite(corner.x()) || !std::isfinite(corner.y()))
            return;
    // Edges always run downwards: neighbours agree on where theirs is.
    std::sort(corners.begin(), corners.end(), [](const QPointF& a, const QPointF& b) {
        return a.y() < b.y() || (a.y() == b.y() && a.x() < b.x());
    });
    const auto& [top, middle, bottom] = corners;
    const auto edgeAt = [](const QPointF& a, const QPointF& b, double y) {
        return a.x() + (b.x() - a.x()) * ((y - a.y()) / (b.y() - a.y()));
    };
    const int lastRow = FirstCentre(bottom.y(), size.height());
    for (int row = FirstCentre(top.y(), size.height()); row < lastRow; ++row) {
        const double y = row + 0.5;
        const double longSide = edgeAt(top, bottom, y);
        const double shortSide = y < middle.y() ? edgeAt(top, middle, y) : edgeAt(middle, bottom, y);
        const int end = FirstCentre(std::max(longSide, shortSide), size.width());
        for (int x = FirstCentre(std::min(longSide, shortSide), size.width()); x < end; ++x)
            visit(x, row);
    }
}

} // namespace Host
