#pragma once

#include "lumenta/Export.h"
#include "lumenta/foundation/Color.h"
#include "lumenta/foundation/Vector.h"

#include <QImage>
#include <QObject>
#include <QRect>
#include <QSize>
#include <QString>

/// A picture in memory: of a texture, of a background, of what was rendered.
///
/// **Who implements it:** whoever implements the IImageManager, and the host for
/// images of its own. **Who calls it:** renderers, image savers, panels, whoever
/// prepares a texture.
/// **Thread:** may be read from any thread while nobody changes it.
/// **Ownership:** that of who made it: the image manager for what it loaded, the
/// caller for what Clone() answers.
///
/// Row 0 is the upper one. Colours are those of the file, not linear, with alpha
/// not multiplied in. Images have no signals: who changes one tells those who
/// show it (IMaterial::SetImage).
class LUMENTA_EXPORT IImage : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~IImage() override;

    /// Where it was loaded from; empty for one made in memory.
    virtual QString GetFileName() const = 0;
    virtual void SetFileName(const QString& strFileName) = 0;

    /// In pixels; empty for an image without any.
    virtual QSize GetSize() const = 0;

    /// Whether any pixel is allowed to be transparent.
    virtual bool HasAlpha() const = 0;

    /// Transparent black outside the image.
    virtual ColorF GetPixel(int x, int y) const = 0;

    /// Outside the image nothing happens. Components are clamped to 0..1.
    virtual void SetPixel(int x, int y, const ColorF& color) = 0;

    /// Bilinear, colours weighted by their alpha, at a texture coordinate whose origin is
    /// the upper left corner. One that isn't finite counts as 0.
    /// \param bRepeated whether the image goes on beyond 0..1; else nothing,
    ///                  transparent black, is there
    virtual ColorF Sample(const TVec2<float>& texCoord, bool bRepeated) const = 0;

    /// Mean over all pixels, colours weighted by their alpha.
    virtual ColorF GetAverageColor() const = 0;

    /// A copy of the pixels.
    virtual QImage ToQImage() const = 0;

    /// Replaces the pixels; the file name stays.
    virtual void SetQImage(const QImage& image) = 0;

    /// A copy that the caller owns.
    virtual IImage* Clone() const = 0;

    /// Scales the content smoothly. An empty size is ignored.
    /// \throws OutOfMemoryException there is no room for the pixels
    virtual void Resize(const QSize& size) = 0;

    /// Keeps the part of `rect` that lies within the image; if none does,
    /// nothing happens.
    virtual void Crop(const QRect& rect) = 0;

    /// \param nQuarterTurns clockwise; negative turns back
    virtual void Rotate(int nQuarterTurns) = 0;

    /// Swaps left and right, or top and bottom, or both.
    virtual void Mirror(bool bHorizontally, bool bVertically) = 0;
};
