#include "reference/host/Surface.h"

#include "reference/host/Studio.h"

#include <algorithm>
#include <cmath>

namespace Host {

namespace {

constexpr TVec3<float> kClay{0.62f, 0.53f, 0.45f};
constexpr float kDarkest = 0.03f;
constexpr float kBrightest = 0.86f;

/// The number within bounds, or the default where it is none.
float NumberOr(const QVariant& value, double otherwise, double least, double most)
{
    bool isNumber = false;
    const double number = value.toDouble(&isNumber);
    return static_cast<float>(isNumber && !std::isnan(number) ? std::clamp(number, least, most) : otherwise);
}

/// False where the parameter is missing or no colour.
bool ReadColour(const QVariant& value, TVec3<float>& colour)
{
    const QColor read = value.value<QColor>();
    if (!read.isValid())
        return false;
    const QRgb pixel = read.rgb(); // clamps extended colours
    colour = {LinearFromSrgb(qRed(pixel)), LinearFromSrgb(qGreen(pixel)), LinearFromSrgb(qBlue(pixel))};
    return true;
}

bool IsBlack(const TVec3<float>& colour)
{
    return colour.x == 0.0f && colour.y == 0.0f && colour.z == 0.0f;
}

TVec3<float> WithinReach(const TVec3<float>& colour)
{
    return {std::clamp(colour.x, kDarkest, kBrightest), std::clamp(colour.y, kDarkest, kBrightest),
            std::clamp(colour.z, kDarkest, kBrightest)};
}

/// The texture multiplies the colour. Files often leave the colour of a
/// textured material black, which would hide the texture: it counts as white.
TVec3<float> BaseColour(const QMap<QString, QVariant>& parameters, bool textured)
{
    TVec3<float> colour{};
    const bool given = ReadColour(parameters.value(QStringLiteral("diffuse")), colour);
    if (textured)
        return given && !IsBlack(colour) ? colour : TVec3<float>{1.0f, 1.0f, 1.0f};
    const bool textureIsMissing = !parameters.value(QStringLiteral("texture")).toString().isEmpty();
    return given && !(IsBlack(colour) && textureIsMissing) ? colour : kClay;
}

float SpecularStrength(const QMap<QString, QVariant>& parameters)
{
    TVec3<float> colour{};
    if (!ReadColour(parameters.value(QStringLiteral("specular")), colour))
        return 0.04f;
    return (colour.x + colour.y + colour.z) / 3.0f;
}

/// A texel's place along one axis: the two texels that it lies between, and
/// how far it is from the first.
struct Between {
    int first;
    int second;
    float fraction;
};

Between Locate(float coordinate, int count)
{
    const float finite = std::isfinite(coordinate) ? coordinate : 0.0f;
    const float position = (finite - std::floor(finite)) * static_cast<float>(count) - 0.5f;
    const float whole = std::floor(position);
    const int index = static_cast<int>(whole); // -1 to count
    return {(index + count) % count, (index + 1) % count, position - whole};
}

} // namespace

SurfaceColour Surface::At(const TVec2<float>& texCoord) const
{
    if (!texture)
        return base;

    const Between x = Locate(texCoord.x, texture->width());
    const Between y = Locate(texCoord.y, texture->height());
    TVec3<float> sum{};
    float opacity = 0.0f;
    const auto add = [&](int column, int row, float weight) {
        const QRgb texel = reinterpret_cast<const QRgb*>(texture->constScanLine(row))[column];
        // Invisible texels have no say in the colour.
        const float covering = weight * static_cast<float>(qAlpha(texel)) / 255.0f;
        sum = sum
            + TVec3<float>{LinearFromSrgb(qRed(texel)), LinearFromSrgb(qGreen(texel)), LinearFromSrgb(qBlue(texel))}
                * covering;
        opacity += covering;
    };
    add(x.first, y.first, (1.0f - x.fraction) * (1.0f - y.fraction));
    add(x.second, y.first, x.fraction * (1.0f - y.fraction));
    add(x.first, y.second, (1.0f - x.fraction) * y.fraction);
    add(x.second, y.second, x.fraction * y.fraction);

    if (!(opacity > 0.0f))
        return {base.colour, 0.0f};
    return {WithinReach(Times(base.colour, sum * (1.0f / opacity))), base.opacity * std::min(opacity, 1.0f)};
}

bool Surface::CanBeTransparent() const
{
    return base.opacity < 1.0f || (texture && texture->hasAlphaChannel());
}

float Surface::HighlightOn(const TVec3<float>& normal, const TVec3<float>& towardsSun,
                           const TVec3<float>& towardsEye) const
{
    // Blinn's highlight lies where the normal is half way between sun and eye;
    // doubled, the exponent gives one about as large as Phong's. Broad ones are
    // weaker: they share the light out.
    const float alignment = std::max(0.0f, Dot(Normalized(towardsSun + towardsEye), normal));
    const float concentration = std::min(1.0f, (shininess + 2.0f) / 32.0f);
    return 0.6f * specular * concentration * std::pow(alignment, 2.0f * shininess);
}

SurfaceTable::SurfaceTable(const PictureRequest& request)
{
    m_surfaces.reserve(request.meshes->size());
    for (const PosedMesh& mesh : *request.meshes) {
        const QMap<QString, QVariant>& parameters = mesh.materialParameters;
        Surface surface{};
        surface.texture = TextureOf(parameters.value(QStringLiteral("texture")), request.textures);
        surface.base.colour = WithinReach(BaseColour(parameters, surface.texture));
        surface.base.opacity = NumberOr(parameters.value(QStringLiteral("opacity")), 1.0, 0.0, 1.0);
        surface.specular = SpecularStrength(parameters);
        surface.shininess = NumberOr(parameters.value(QStringLiteral("shininess")), 20.0, 1.0, 1000.0);
        m_surfaces.push_back(surface);
    }
}

bool SurfaceTable::HasTransparent() const
{
    return std::any_of(m_surfaces.begin(), m_surfaces.end(), [](const Surface& surface) { return surface.CanBeTransparent(); });
}

const QImage* SurfaceTable::TextureOf(const QVariant& name, const QMap<QString, QImage>* textures)
{
    const QString key = name.toString();
    if (!textures || !textures->contains(key))
        return nullptr;
    const auto known = m_textures.find(key);
    if (known != m_textures.end())
        return &known->second;
    const QImage source = textures->value(key);
    const QImage::Format format = source.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32;
    const QImage image = source.convertToFormat(format);
    return image.isNull() ? nullptr : &m_textures.emplace(key, image).first->second;
}

} // namespace Host
