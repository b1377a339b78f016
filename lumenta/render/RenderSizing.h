#pragma once

#include "lumenta/Export.h"

#include <QSize>
#include <QVector>

/// \file
/// How large a picture becomes and how long a series takes. Sizes are in pixels,
/// times in milliseconds.
///
/// What comes out larger than an int holds becomes the largest, or smallest, int;
/// what is not a number becomes 0. So a side or an aspect of 0 is no error. All
/// are reentrant; none throws.

/// The size to render: positive sides of `requested`, at most 8192, the others
/// filled in. `aspect` is width over height; 800 wide where neither side is given.
///
/// With `keepAspect` the height follows the width and a requested one counts only
/// where no width is given. Without it a given height is kept as it is. Computed
/// in float, rounded by adding a half.
LUMENTA_EXPORT QSize AdjustResolution(const QSize& requested, float aspect, bool keepAspect);

/// `size` where it fits into `bounds`; otherwise shrunk to it with its aspect
/// kept. Never enlarged. Computed in float, rounded by adding a half.
LUMENTA_EXPORT QSize FitSizeToAnother(const QSize& size, const QSize& bounds);

/// The size of a preview `width` wide of a picture of `size`. Computed in double,
/// cut towards zero. Where both widths are 0 the height is the limit.
///
/// A picture that is not higher than `maxHeight` keeps its own width while its
/// height may still shrink to that of the preview, which callers depend on.
LUMENTA_EXPORT QSize GetOptimapPreviewSize(const QSize& size, int width, int maxHeight);

/// The size of a window that shows `image` above or below `extraHeight` pixels of
/// other things: at most `maximum`, the image shrunk with its aspect kept, and at
/// least `minimum`, which wins.
LUMENTA_EXPORT QSize GetOptimalRenderWindowSize(const QSize& image, const QSize& minimum, const QSize& maximum,
                                                int extraHeight);

/// Four times of a series of frames: spent on this frame, left for it, spent in
/// all, left in all.
///
/// As long as nothing is known of this frame's progress (`currentPercent` below 1)
/// it is taken to last as long as the mean of those finished, the first one a
/// minute; if it has lasted longer already, ten times as long as now, which is
/// deliberate.
///
/// Whole numbers, modulo 2⁶⁴: what would be negative, as beyond 100 percent or
/// beyond the last frame, is a very large number.
/// \param finishedTime of all frames before this one
/// \param currentTime of this frame so far
/// \param currentFrame counted from 1; must not be 0 where a percentage is known
LUMENTA_EXPORT QVector<unsigned long long> GetRenderingTimes(unsigned long long finishedTime,
                                                             unsigned long long currentTime, int frameCount,
                                                             int currentFrame, int currentPercent);
