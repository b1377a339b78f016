#pragma once

#include "reference/plugins/painter-renderer/Pieces.h"

namespace Host {

/// Some rows of a picture, on which meshes are drawn: transparent where there
/// are none. Finer than the picture, so that edges come out smooth.
///
/// Each pixel knows how far away it is: in whatever order opaque pieces come,
/// the nearest is seen.
class Canvas {
public:
    /// \throws OutOfMemoryException it does not fit in memory
    Canvas(const Studio& studio, int top, int rows);

    /// Canvas pixels for a pixel of the picture.
    static constexpr int PixelCount() { return kFiner * kFiner; }

    /// Puts the picture's rows behind all: glass that tints needs to have what it
    /// tints on the canvas.
    void PutBehind(const QImage& picture);

    /// Draws what is opaque, then, behind nothing of that, what is not.
    /// \param pieces the farthest first
    void Draw(const std::vector<Piece>& pieces);

    /// In the picture's own pixels, premultiplied.
    QImage GetPicture() const;

private:
    static constexpr int kFiner = 3;

    template <typename Painter>
    void ForEachVisiblePixel(const Piece& piece, const Painter& paint);
    TVec3<float> FaceNormal(const Piece& piece) const;
    QRgb ColourAt(const Piece& piece, const TVec3<float>& faceNormal, const TVec3<float>& weights) const;
    TVec3<float> InStudio(const TVec3<float>& direction) const;

    const Studio& m_studio;
    int m_top;
    QImage m_image;
    std::vector<float> m_nearness; ///< For each pixel 1 / depth; 0 where there is nothing.
};

} // namespace Host
