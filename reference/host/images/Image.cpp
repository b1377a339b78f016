#include "reference/host/images/Image.h"

#include "lumenta/foundation/Exceptions.h"

#include <QTransform>

#include <algorithm>
#include <cmath>

namespace Host {

namespace {

int ByteOf(float component)
{
    return component > 0.0f ? static_cast<int>(std::min(component, 1.0f) * 255.0f + 0.5f) : 0;
}

/// A weighted mean of colours, each counting by its alpha.
class Mixture {
public:
    void Add(QRgb pixel, double weight)
    {
        const double covering = weight * qAlpha(pixel) / 255.0;
        m_red += covering * qRed(pixel) / 255.0;
        m_green += covering * qGreen(pixel) / 255.0;
        m_blue += covering * qBlue(pixel) / 255.0;
        m_alpha += covering;
    }

    ColorF Of(double totalWeight) const
    {
        if (!(m_alpha > 0.0)) return {0.0f, 0.0f, 0.0f, 0.0f};
        return {static_cast<float>(m_red / m_alpha), static_cast<float>(m_green / m_alpha),
                static_cast<float>(m_blue / m_alpha), static_cast<float>(m_alpha / totalWeight)};
    }

private:
    double m_red = 0.0, m_green = 0.0, m_blue = 0.0, m_alpha = 0.0;
};

/// The two texels between which a coordinate lies, and how far it is from the first.
struct Between {
    int first;
    int second;
    double fraction;
};

Between Locate(double coordinate, int nCount, bool bRepeated)
{
    const double position = (bRepeated ? coordinate - std::floor(coordinate) : coordinate) * nCount - 0.5;
    const int first = static_cast<int>(std::floor(position)); // −1 to count
    const double fraction = position - first;
    if (bRepeated) return {(first + nCount) % nCount, (first + 1) % nCount, fraction};
    return {std::max(first, 0), std::min(first + 1, nCount - 1), fraction};
}

} // namespace

Image::Image(const QImage& image, const QString& strFileName, QObject* pParent)
    : IImage(pParent)
    , m_strFileName(strFileName)
{
    SetQImage(image);
}

ColorF Image::GetPixel(int x, int y) const
{
    if (!m_image.valid(x, y)) return {0.0f, 0.0f, 0.0f, 0.0f};
    const QRgb pixel = m_image.pixel(x, y);
    return {static_cast<float>(qRed(pixel)) / 255.0f, static_cast<float>(qGreen(pixel)) / 255.0f,
            static_cast<float>(qBlue(pixel)) / 255.0f, static_cast<float>(qAlpha(pixel)) / 255.0f};
}

void Image::SetPixel(int x, int y, const ColorF& color)
{
    if (m_image.valid(x, y))
        m_image.setPixel(x, y, qRgba(ByteOf(color.r), ByteOf(color.g), ByteOf(color.b), ByteOf(color.a)));
}

ColorF Image::Sample(const TVec2<float>& texCoord, bool bRepeated) const
{
    const double u = std::isfinite(texCoord.x) ? static_cast<double>(texCoord.x) : 0.0;
    const double v = std::isfinite(texCoord.y) ? static_cast<double>(texCoord.y) : 0.0;
    const bool bOutside = u < 0.0 || u > 1.0 || v < 0.0 || v > 1.0;
    if (m_image.isNull() || (bOutside && !bRepeated)) return {0.0f, 0.0f, 0.0f, 0.0f};
    const Between x = Locate(u, m_image.width(), bRepeated);
    const Between y = Locate(v, m_image.height(), bRepeated);
    Mixture mixture;
    mixture.Add(m_image.pixel(x.first, y.first), (1.0 - x.fraction) * (1.0 - y.fraction));
    mixture.Add(m_image.pixel(x.second, y.first), x.fraction * (1.0 - y.fraction));
    mixture.Add(m_image.pixel(x.first, y.second), (1.0 - x.fraction) * y.fraction);
    mixture.Add(m_image.pixel(x.second, y.second), x.fraction * y.fraction);
    return mixture.Of(1.0);
}

ColorF Image::GetAverageColor() const
{
    Mixture mixture;
    const QRgb opaque = HasAlpha() ? 0u : qRgba(0, 0, 0, 255); // RGB32 doesn't care what is in that byte
    for (int y = 0; y < m_image.height(); ++y) {
        const auto* const row = reinterpret_cast<const QRgb*>(m_image.constScanLine(y));
        for (int x = 0; x < m_image.width(); ++x)
            mixture.Add(row[x] | opaque, 1.0);
    }
    return mixture.Of(static_cast<double>(m_image.width()) * m_image.height());
}

void Image::SetQImage(const QImage& image)
{
    m_image = image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
}

IImage* Image::Clone() const
{
    return new Image(m_image, m_strFileName);
}

void Image::Resize(const QSize& size)
{
    if (size.isEmpty() || m_image.isNull()) return;
    const QImage scaled = m_image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    if (scaled.isNull())
        throw OutOfMemoryException(
            QStringLiteral("There is no memory for an image of %1 by %2 pixels").arg(size.width()).arg(size.height()));
    SetQImage(scaled);
}

void Image::Crop(const QRect& rect)
{
    const QRect kept = rect & m_image.rect();
    if (!kept.isEmpty()) m_image = m_image.copy(kept);
}

void Image::Rotate(int nQuarterTurns)
{
    SetQImage(m_image.transformed(QTransform().rotate(90.0 * (nQuarterTurns % 4))));
}

void Image::Mirror(bool bHorizontally, bool bVertically)
{
    m_image = m_image.mirrored(bHorizontally, bVertically);
}

} // namespace Host
