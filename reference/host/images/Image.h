#pragma once

#include "lumenta/interfaces/IImage.h"

namespace Host {

/// A picture over a QImage, in 8 bits a component: ARGB32, or RGB32 where no
/// pixel may be transparent. Colours between pixels are mixed by their alpha,
/// so that the colour of what can't be seen shows nowhere.
class Image final : public IImage {
    Q_OBJECT

public:
    explicit Image(const QImage& image = {}, const QString& strFileName = {}, QObject* pParent = nullptr);

    QString GetFileName() const override { return m_strFileName; }
    void SetFileName(const QString& strFileName) override { m_strFileName = strFileName; }
    QSize GetSize() const override { return m_image.size(); }
    bool HasAlpha() const override { return m_image.hasAlphaChannel(); }
    ColorF GetPixel(int x, int y) const override;
    /// Where no pixel may be transparent, the alpha is passed over.
    void SetPixel(int x, int y, const ColorF& color) override;
    /// A coordinate that is no number counts as 0.
    ColorF Sample(const TVec2<float>& texCoord, bool bRepeated) const override;
    ColorF GetAverageColor() const override;
    QImage ToQImage() const override { return m_image; }
    void SetQImage(const QImage& image) override;
    IImage* Clone() const override;
    void Resize(const QSize& size) override;
    void Crop(const QRect& rect) override;
    void Rotate(int nQuarterTurns) override;
    void Mirror(bool bHorizontally, bool bVertically) override;

private:
    QImage m_image;
    QString m_strFileName;
};

} // namespace Host
