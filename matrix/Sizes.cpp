#include "lumenta/foundation/Conversions.h"
#include "lumenta/render/RenderSizing.h"
#include "matrix/Trials.h"

// Sizes of pictures, and times.

namespace Trials {

namespace {

constexpr int kRounds = 50000;

/// The braces put the two calls in order.
QSize AnySize(Random& random)
{
    const int sides[] = {AnyInt(random), AnyInt(random)};
    return {sides[0], sides[1]};
}

void AddSize(Sum& sum, const QSize& size)
{
    sum.Add(size.width());
    sum.Add(size.height());
}

void Resolutions(Random& random, Sum& sum)
{
    for (int i = 0; i < kRounds; ++i) {
        const QSize requested = AnySize(random);
        const float aspect = random.Below(2) != 0 ? AnyFloat(random) : random.Between(0.2f, 5.0f);
        AddSize(sum, AdjustResolution(requested, aspect, random.Below(2) != 0));
    }
}

void Fitted(Random& random, Sum& sum)
{
    for (int i = 0; i < kRounds; ++i) {
        const QSize size = AnySize(random);
        AddSize(sum, FitSizeToAnother(size, AnySize(random)));
    }
}

void Previews(Random& random, Sum& sum)
{
    for (int i = 0; i < kRounds; ++i) {
        const QSize size = AnySize(random);
        const int width = AnyInt(random);
        AddSize(sum, GetOptimapPreviewSize(size, width, AnyInt(random)));
    }
}

void Windows(Random& random, Sum& sum)
{
    for (int i = 0; i < kRounds; ++i) {
        const QSize image = AnySize(random);
        const QSize minimum = AnySize(random);
        const QSize maximum = AnySize(random);
        AddSize(sum, GetOptimalRenderWindowSize(image, minimum, maximum, AnyInt(random)));
    }
}

void Times(Random& random, Sum& sum)
{
    for (int i = 0; i < kRounds; ++i) {
        const std::uint64_t finished = std::uint64_t{random.Next()} << random.Below(33);
        const std::uint64_t current = random.Next() >> random.Below(20);
        const int count = AnyInt(random);
        const int shown = 1 + static_cast<int>(random.Below(500));
        const auto times = GetRenderingTimes(finished, current, count, shown, static_cast<int>(random.Below(110)));
        for (const std::uint64_t time : times)
            sum.Add(time);
        sum.Add(millisecondsToQTime(finished).msecsSinceStartOfDay());
    }
}

} // namespace

std::vector<Trial> Sizes()
{
    return {{"sizes", "AdjustResolution", Resolutions},
            {"sizes", "FitSizeToAnother", Fitted},
            {"sizes", "GetOptimapPreviewSize", Previews},
            {"sizes", "GetOptimalRenderWindowSize", Windows},
            {"sizes", "GetRenderingTimes, millisecondsToQTime", Times}};
}

} // namespace Trials
