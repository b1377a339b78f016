#include "fuzz/Input.h"
#include "lumenta/foundation/Conversions.h"

#include <cmath>
#include <limits>

// Stored rectangles: any text is a rectangle or none; any rectangle has a text,
// which can be read back, less what the format drops.

namespace {

constexpr auto kLargest = static_cast<double>(std::numeric_limits<float>::max());

/// Only decimals may change, and the place before them where they round up.
bool IsKept(double before, double after)
{
    if (std::isnan(before)) return std::isnan(after);
    if (std::isinf(before)) return before == after;
    return std::fabs(before - after) <= 1.0 + std::fabs(before) * 0x1p-23;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::Input input(data, size);
    const QRectF none(1.5, 2.5, 3.5, 4.5);
    QRectF rect;
    if (input.Flag())
        rect = QVariantToQRectF(QString::fromUtf8(input.Rest()), none);
    else
        rect.setRect(input.Raw<double>(), input.Raw<double>(), input.Raw<double>(), input.Raw<double>());

    const QRectF back = QVariantToQRectF(QRectFToQVariant(rect), none);
    const double before[] = {rect.x(), rect.y(), rect.width(), rect.height()};
    const double after[] = {back.x(), back.y(), back.width(), back.height()};
    for (const double number : before) // a double may be none that can be stored
        if (std::isfinite(number) && std::fabs(number) > kLargest) return 0;
    for (int i = 0; i < 4; ++i)
        Fuzz::Require(IsKept(before[i], after[i]), "a rectangle comes back");
    return 0;
}
