#include "reference/plugins/painter-renderer/PainterRenderer.h"

#include "reference/plugins/painter-renderer/Canvas.h"
#include "reference/plugins/painter-renderer/FloorShadow.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <optional>

namespace Host {

namespace {

constexpr int kMostCanvasPixels = 1'500'000; ///< Nobody is asked while a canvas is drawn.
constexpr int kStudioShare = 20; ///< Of the work, in percent.

bool Tints(const Surface& surface)
{
    return surface.CanBeTransparent() && surface.filter != TVec3<float>{1.0f, 1.0f, 1.0f};
}

/// The request's picture before any mesh is on it.
/// \return false if the request was stopped before all of it was there
bool PaintStudio(QImage& image, const Studio& studio, const PictureRequest& request, const SurfaceTable& surfaces,
                 const Progress& progress)
{
    std::optional<FloorShadow> shadow;
    if (studio.ground && studio.groundShadow)
        shadow.emplace(request, surfaces, studio);
    for (int y = 0; y < studio.size.height(); ++y) {
        if (progress)
            progress(std::max(kStudioShare * y / studio.size.height(), 1));
        if (request.MustStop())
            return false;
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
    return true;
}

class PainterRenderer final : public IPictureRenderer {
public:
    QString GetName() const override { return QStringLiteral("painter"); }

    QStringList GetLeftOut(const PictureRequest& request) const override
    {
        QStringList lines;
        if (std::any_of(request.lamps.begin(), request.lamps.end(), [](const Lamp& lamp) { return lamp.castsShadows; }))
            lines += QStringLiteral("The painter draws no shadows of lamps");
        const std::vector<Surface> none;
        for (const Surface& surface : request.surfaces ? *request.surfaces : none) {
            QStringList missing;
            if (surface.reflection > 0.0f)
                missing += QStringLiteral("reflections");
            if (surface.bumpHeight != 0.0f && surface.textures[eMaterialSlotBump])
                missing += QStringLiteral("bumps");
            if (!missing.isEmpty())
                lines += QStringLiteral("The painter draws the material '%1' without %2")
                             .arg(surface.name, missing.join(QStringLiteral(" and ")));
        }
        lines.removeDuplicates(); // several meshes may wear one material
        return lines;
    }

    QImage Render(const PictureRequest& request, const Progress& progress) override
    {
        if (request.size.isEmpty())
            return {};
        QImage image = NewPicture(request.size, QImage::Format_RGB32);
        image.fill(Qt::black);
        if (request.MustStop())
            return image;
        const Studio studio(request);
        const SurfaceTable surfaces(request);
        if (!PaintStudio(image, studio, request, surfaces, progress))
            return image;
        const std::vector<Piece> pieces = PiecesInFront(request, surfaces, studio);

        const bool tints = surfaces.HasAny(Tints);

        // Band by band, so that the finer canvas stays small.
        const int width = request.size.width();
        const int height = request.size.height();
        const int rows = std::max(1, kMostCanvasPixels / (width * Canvas::PixelCount()));
        for (int top = 0; top < height; top += rows) {
            if (progress)
                progress(kStudioShare + (100 - kStudioShare) * top / height);
            if (request.MustStop())
                return image;
            Canvas canvas(studio, top, std::min(rows, height - top));
            if (tints)
                canvas.PutBehind(image);
            canvas.Draw(pieces);
            QPainter(&image).drawImage(0, top, canvas.GetPicture());
        }
        if (progress)
            progress(100);
        return image;
    }
};

} // namespace

std::unique_ptr<IPictureRenderer> CreatePainterRenderer()
{
    return std::make_unique<PainterRenderer>();
}

} // namespace Host
