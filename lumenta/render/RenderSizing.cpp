#include "lumenta/render/RenderSizing.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using Limits = std::numeric_limits<int>;

constexpr int kLargestSide = 8192;
constexpr int kDefaultWidth = 800;
constexpr unsigned long long kFirstFrame = 60000;

/// Towards zero.
int Truncated(double value)
{
    if (std::isnan(value)) return 0;
    return static_cast<int>(std::clamp(value, double(Limits::min()), double(Limits::max())));
}

/// The half is added in float.
int Rounded(float value)
{
    return Truncated(double(value + 0.5f));
}

int Rounded(double value)
{
    const bool isInside = value > double(Limits::min()) && value < double(Limits::max());
    return isInside ? qRound(value) : Truncated(value);
}

} // namespace

QSize AdjustResolution(const QSize& requested, float aspect, bool keepAspect)
{
    int w = std::clamp(requested.width(), 0, kLargestSide);
    int h = std::clamp(requested.height(), 0, kLargestSide);
    if (w == 0 && h == 0) w = kDefaultWidth;

    if (w == 0) {
        w = Rounded(float(h) * aspect);
        if (w > kLargestSide) {
            h = Rounded(float(kLargestSide) / aspect);
            w = kLargestSide;
        }
    } else if (keepAspect || h == 0) {
        h = Rounded(float(w) / aspect);
    }
    if (h > kLargestSide) {
        w = Rounded(aspect * float(kLargestSide));
        h = kLargestSide;
    }
    return {w, h};
}

QSize FitSizeToAnother(const QSize& size, const QSize& bounds)
{
    if (size.width() <= bounds.width() && size.height() <= bounds.height()) return size;
    const auto width = float(size.width());
    const auto height = float(size.height());
    // Nothing in nothing is no number, and the other side decides.
    const float s = std::fmax(width / float(bounds.width()), height / float(bounds.height()));
    return {Rounded(width / s), Rounded(height / s)};
}

QSize GetOptimapPreviewSize(const QSize& size, int width, int maxHeight)
{
    const double v = double(width) / size.width() * size.height();
    if (size.height() > maxHeight) return {width, Truncated(std::min(double(maxHeight), v))};
    return {size.width(), Truncated(std::min(double(size.height()), v))};
}

QSize GetOptimalRenderWindowSize(const QSize& image, const QSize& minimum, const QSize& maximum, int extraHeight)
{
    const double r = double(image.width()) / image.height();
    int w = image.width();
    int h = image.height();
    if (maximum.width() < w) {
        w = maximum.width();
        h = Rounded(maximum.width() / r);
    }
    const qint64 windowHeight = qint64(h) + extraHeight;
    if (maximum.height() < windowHeight) w = Rounded(r * double(qint64(maximum.height()) - extraHeight));
    const qint64 shownHeight = std::max(std::min(windowHeight, qint64(maximum.height())), qint64(minimum.height()));
    return {std::max(w, minimum.width()), int(shownHeight)};
}

QVector<unsigned long long> GetRenderingTimes(unsigned long long finishedTime, unsigned long long currentTime,
                                              int frameCount, int currentFrame, int currentPercent)
{
    using Time = unsigned long long;
    const auto framesLeft = static_cast<Time>(qint64(frameCount) - currentFrame);
    Time current; // how long this frame lasts
    Time other;   // and each one after it
    if (currentPercent < 1) {
        current = currentFrame > 1 ? finishedTime / Time(currentFrame - 1) : kFirstFrame;
        if (current < currentTime) current = currentTime * 10;
        other = current;
    } else {
        current = currentTime * 100 / Time(currentPercent);
        other = (current + finishedTime) / Time(currentFrame);
    }
    const Time left = current - currentTime;
    return {currentTime, left, finishedTime + currentTime, other * framesLeft + left};
}
