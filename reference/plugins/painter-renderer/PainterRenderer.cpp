#include "reference/plugins/painter-renderer/PainterRenderer.h"

#include "reference/plugins/painter-renderer/Canvas.h"
#include "reference/plugins/painter-renderer/FloorShadow.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <optional>

namespace Host {

namespace {

constexpr int kMostCanvasPixels = 6'000'000;

/// The request's picture before any mesh is on it.
void PaintStudio(QImage& image, const Studio& studio, const PictureRequest& request, const SurfaceTable& surfaces)
{
    std::optional<FloorShadow> shadow;
    if (studio.ground && studio.groundShadow)
        shadow.emplace(request, surfaces, studio);
    for (int y = 0; y < studio.size.height(); ++y) {
        QRgb* const row = reinterpret_cast<QRgb*>(image.scanLine(y));
        const float pixelY = static_cast<float>(y) + 0.5f;
        for (int x = 0; x < studio.size.width(); ++x) {
            const TVec3<float> ray = studio.RayThrough(static_cast<float>(x) + 0.5f, pixelY);
            const float distance = studio.DistanceToFloor(studio.eye, ray);
            const TVec3<float> backdrop = studio.Backdrop(static_cast<float>(x) + 0.5f, pixelY);
            const TVec3<float> colour = shadow && std::isfinite(distance)
                ? studio.Floor(studio.eye + ray * distance, backdrop, shadow->LostAt(x, y))
                : backdrop;
            row[x] = PixelFromLinear(colour, DitherAt(x, y));
        }
    }
}

class PainterRenderer final : public IPictureRenderer {
public:
    QString GetName() const override { return QStringLiteral("painter"); }

    QImage Render(const PictureRequest& request, const Progress& progress) override
    {
        if (request.size.isEmpty())
            return {};
        const Studio studio(request);
        const SurfaceTable surfaces(request);
        QImage image = NewPicture(request.size, QImage::Format_RGB32);
        PaintStudio(image, studio, request, surfaces);
        const std::vector<Piece> pieces = PiecesInFront(request, surfaces, studio);

        // Band by band, so that the finer canvas stays small.
        const int width = request.size.width();
        const int height = request.size.height();
        const int rows = std::max(1, kMostCanvasPixels / (width * Canvas::PixelCount()));
        for (int top = 0; top < height; top += rows) {
            Canvas canvas(studio, top, std::min(rows, height - top));
            canvas.Draw(pieces);
            QPainter(&image).drawImage(0, top, canvas.GetPicture());
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
