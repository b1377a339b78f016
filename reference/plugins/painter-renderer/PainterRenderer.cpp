#include "reference/plugins/painter-renderer/PainterRenderer.h"

#include "reference/plugins/painter-renderer/FloorShadow.h"
#include "reference/plugins/painter-renderer/Patches.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <optional>

namespace Host {

namespace {

// Patches are painted without antialiasing, which would let the background
// shine through every seam, on a canvas this many times finer.
constexpr int kFiner = 3;
constexpr int kMostCanvasPixels = 6'000'000;

/// The request's picture before any mesh is on it.
void PaintStudio(QImage& image, const Studio& studio, const PictureRequest& request)
{
    std::optional<FloorShadow> shadow;
    if (studio.ground)
        shadow.emplace(request, studio);
    for (int y = 0; y < studio.size.height(); ++y) {
        QRgb* const row = reinterpret_cast<QRgb*>(image.scanLine(y));
        const float pixelY = static_cast<float>(y) + 0.5f;
        for (int x = 0; x < studio.size.width(); ++x) {
            const TVec3<float> ray = studio.RayThrough(static_cast<float>(x) + 0.5f, pixelY);
            const float distance = studio.DistanceToFloor(studio.eye, ray);
            const TVec3<float> colour = std::isfinite(distance)
                ? studio.Floor(studio.eye + ray * distance, pixelY, shadow->LostAt(x, y))
                : studio.Backdrop(pixelY);
            row[x] = PixelFromLinear(colour, DitherAt(x, y));
        }
    }
}

/// The patches that touch some rows of the picture, on a transparent ground.
QImage PaintBand(const std::vector<Patch>& patches, int top, QSize size)
{
    QImage canvas = NewPicture(size * kFiner, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    QPainter painter(&canvas);
    painter.setPen(Qt::NoPen);
    for (const Patch& patch : patches) {
        const auto [first, last] = std::minmax({patch.corners[0].y(), patch.corners[1].y(), patch.corners[2].y()});
        if (last < top || first > top + size.height())
            continue;
        QPointF corners[3];
        for (std::size_t i = 0; i < 3; ++i)
            corners[i] = (patch.corners[i] - QPointF(0.0, top)) * kFiner;
        painter.setBrush(QColor::fromRgba(patch.colour));
        painter.drawConvexPolygon(corners, 3);
    }
    painter.end();
    return canvas.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

class PainterRenderer final : public IPictureRenderer {
public:
    QString GetName() const override { return QStringLiteral("painter"); }

    QImage Render(const PictureRequest& request, const Progress& progress) override
    {
        if (request.size.isEmpty())
            return {};
        const Studio studio(request);
        QImage image = NewPicture(request.size, QImage::Format_RGB32);
        PaintStudio(image, studio, request);
        const std::vector<Patch> patches = CutIntoPatches(request, studio);

        // Band by band, so that the finer canvas stays small.
        const int width = request.size.width();
        const int height = request.size.height();
        const int rows = std::max(1, kMostCanvasPixels / (width * kFiner * kFiner));
        for (int top = 0; top < height; top += rows) {
            const QSize band(width, std::min(rows, height - top));
            QPainter(&image).drawImage(0, top, PaintBand(patches, top, band));
            if (progress)
                progress(100 * std::min(top + rows, height) / height);
        }
        return image;
    }
};

} // namespace

std::unique_ptr<IPictureRenderer> CreatePainterRenderer()
{
    return std::make_unique<PainterRenderer>();
}

} // namespace Host
