#include "docs/snippets/Snippets.h"

#include "lumenta/foundation/Conversions.h"
#include "lumenta/render/RenderSizing.h"

//! [render]
/// The size of a picture of which one side, or none, was asked for: those that
/// were not are 0.
QSize PictureSize(const QSize& requested, float frameAspect)
{
    return AdjustResolution(requested, frameAspect, false);
}

/// "00:01:30": how long a series of pictures still takes.
QString TimeLeft(unsigned long long finished, unsigned long long current, int nFrames, int nFrame, int nPercent)
{
    const QVector<unsigned long long> times = GetRenderingTimes(finished, current, nFrames, nFrame, nPercent);
    const QTime left = millisecondsToQTime(times.at(3));
    return left.isValid() ? left.toString(QStringLiteral("hh:mm:ss")) : QStringLiteral("a day or more");
}
//! [render]
