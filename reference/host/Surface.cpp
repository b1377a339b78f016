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

/// The surface that a mesh's parameters describe.
/// \param image  of its texture; null for none
Surface SurfaceOf(const QMap<QString, QVariant>& parameters, const QImage& image)
{
    Surface surface;
    if (!image.isNull()) {
        surface.textures[eMaterialSlotDiffuse].emplace();
        surface.textures[eMaterialSlotDiffuse]->image = image;
    }
    surface.base.colour = WithinReach(BaseColour(parameters, !image.isNull()));
    surface.base.opacity = NumberOr(parameters.value(QStringLiteral("opacity")), 1.0, 0.0, 1.0);
    surface.specular = SpecularStrength(parameters);
    surface.shininess = NumberOr(parameters.value(QStringLiteral("shininess")), 20.0, 1.0, 1000.0);
    return surface;
}

float FiniteOr0(float value)
{
    return std::isfinite(value) ? value : 0.0f;
}

/// A texel's place along one axis: the two texels that it lies between, and
/// how far it is from the first.
struct Between {
    int first;
    int second;
    float fraction;
};

Between Locate(float coordinate, int count, bool repeated)
{
    const float finite = FiniteOr0(coordinate);
    const float within = repeated ? finite - std::floor(finite) : finite; // else in 0..1 already
    const float position = within * static_cast<float>(count) - 0.5f;
    const float whole = std::floor(position);
    const int index = static_cast<int>(whole); // -1 to count
    if (!repeated)
        return {std::max(index, 0), std::min(index + 1, count - 1), position - whole};
    return {(index + count) % count, (index + 1) % count, position - whole};
}

/// Whether there is a texture at a point in the image.
bool IsInside(const Texture& texture, const TVec2<float>& at)
{
    return texture.repeated || (at.x >= 0.0f && at.x <= 1.0f && at.y >= 0.0f && at.y <= 1.0f);
}

/// Calls `visit(texel, weight)` for the four texels around a point, unless that
/// lies beyond an image that doesn't repeat.
/// \return whether it was called
template <typename Visitor>
bool VisitTexels(const Texture& texture, const TVec2<float>& at, const Visitor& visit)
{
    if (!IsInside(texture, at))
        return false;
    const Between x = Locate(at.x, texture.image.width(), texture.repeated);
    const Between y = Locate(at.y, texture.image.height(), texture.repeated);
    const auto add = [&](int column, int row, float weight) {
        const QRgb texel = reinterpret_cast<const QRgb*>(texture.image.constScanLine(row))[column];
        visit(texture.inverted ? texel ^ 0x00ffffffu : texel, weight);
    };
    add(x.first, y.first, (1.0f - x.fraction) * (1.0f - y.fraction));
    add(x.second, y.first, x.fraction * (1.0f - y.fraction));
    add(x.first, y.second, (1.0f - x.fraction) * y.fraction);
    add(x.second, y.second, x.fraction * y.fraction);
    return true;
}

/// A factor of which only a part is in force.
float Mixed(float factor, float amount)
{
    return factor * amount + (1.0f - amount);
}

TVec3<float> Mixed(const TVec3<float>& factor, float amount)
{
    return {Mixed(factor.x, amount), Mixed(factor.y, amount), Mixed(factor.z, amount)};
}

/// The part of light that the border of a medium mirrors, after Fresnel.
float MirroredByBorder(float cosine, float index)
{
    const float g = std::sqrt(index * index - 1.0f + cosine * cosine);
    const float across = (g - cosine) / (g + cosine);
    const float along = (cosine * (g + cosine) - 1.0f) / (cosine * (g - cosine) + 1.0f);
    return 0.5f * across * across * (1.0f + along * along);
}

} // namespace

TVec3<float> WithinReach(const TVec3<float>& colour)
{
    return {std::clamp(colour.x, kDarkest, kBrightest), std::clamp(colour.y, kDarkest, kBrightest),
            std::clamp(colour.z, kDarkest, kBrightest)};
}

QImage TextureImage(const QImage& image)
{
    return image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
}

TVec2<float> Texture::Placed(const TVec2<float>& texCoord) const
{
    const float u = FiniteOr0(texCoord.x);
    const float v = FiniteOr0(texCoord.y);
    const auto& m = placement.m;
    return {u * m[0] + v * m[3] + m[6], u * m[1] + v * m[4] + m[7]};
}

std::optional<SurfaceColour> Texture::ColourAt(const TVec2<float>& texCoord) const
{
    TVec3<float> sum{};
    float opacity = 0.0f;
    const bool inside = VisitTexels(*this, Placed(texCoord), [&](QRgb texel, float weight) {
        // Invisible texels have no say in the colour.
        const float covering = weight * static_cast<float>(qAlpha(texel)) / 255.0f;
        sum = sum
            + TVec3<float>{LinearFromSrgb(qRed(texel)), LinearFromSrgb(qGreen(texel)), LinearFromSrgb(qBlue(texel))}
                * covering;
        opacity += covering;
    });
    if (!inside)
        return std::nullopt;
    if (!(opacity > 0.0f))
        return SurfaceColour{{1.0f, 1.0f, 1.0f}, 0.0f};
    return SurfaceColour{sum * (1.0f / opacity), std::min(opacity, 1.0f)};
}

float Texture::BrightnessAt(const TVec2<float>& texCoord) const
{
    return BrightnessIn(Placed(texCoord));
}

TVec2<float> Texture::SlopeAt(const TVec2<float>& texCoord) const
{
    const TVec2<float> at = Placed(texCoord);
    if (!IsInside(*this, at))
        return {0.0f, 0.0f};
    const auto held = [this](float place) { return repeated ? place : std::clamp(place, 0.0f, 1.0f); };
    const float x = 1.0f / static_cast<float>(image.width()); // a texel to either side
    const float y = 1.0f / static_cast<float>(image.height());
    return {(BrightnessIn({held(at.x + x), at.y}) - BrightnessIn({held(at.x - x), at.y})) / (2.0f * x),
            (BrightnessIn({at.x, held(at.y + y)}) - BrightnessIn({at.x, held(at.y - y)})) / (2.0f * y)};
}

float Texture::BrightnessIn(const TVec2<float>& placed) const
{
    float sum = 0.0f;
    VisitTexels(*this, placed, [&sum](QRgb texel, float weight) {
        sum += weight * static_cast<float>(qGray(texel) * qAlpha(texel)) / (255.0f * 255.0f);
    });
    return sum;
}

SurfaceColour Surface::At(const TVec2<float>& texCoord) const
{
    SurfaceColour result = base;
    if (const std::optional<Texture>& texture = textures[eMaterialSlotDiffuse])
        if (const std::optional<SurfaceColour> texel = texture->ColourAt(texCoord)) {
            if (texel->opacity > 0.0f)
                result.colour = WithinReach(Times(base.colour, Mixed(texel->colour, texture->amount)));
            result.opacity = base.opacity * Mixed(texel->opacity, texture->amount);
        }
    if (const std::optional<Texture>& texture = textures[eMaterialSlotOpacity])
        result.opacity *= Mixed(texture->BrightnessAt(texCoord), texture->amount);
    return result;
}

TVec3<float> Surface::Textured(eMaterialSlot slot, const TVec3<float>& colour, const TVec2<float>& texCoord) const
{
    const std::optional<Texture>& texture = textures[slot];
    const std::optional<SurfaceColour> texel = texture ? texture->ColourAt(texCoord) : std::nullopt;
    return texel ? Times(colour, Mixed(texel->colour, texture->amount * texel->opacity)) : colour;
}

bool Surface::CanBeTransparent() const
{
    const auto& texture = textures[eMaterialSlotDiffuse];
    return base.opacity < 1.0f || (texture && texture->image.hasAlphaChannel()) || textures[eMaterialSlotOpacity];
}

TVec3<float> Surface::MirroredAt(float cosine, const TVec2<float>& texCoord) const
{
    if (reflection == 0.0f)
        return {};
    float gain = 1.0f; // so near to 1 there is no border to speak of
    if (refractionIndex > 1.002f)
        gain = MirroredByBorder(std::clamp(cosine, 0.0f, 1.0f), refractionIndex) / MirroredByBorder(1.0f, refractionIndex);
    return Textured(eMaterialSlotReflection, mirrorTint, texCoord) * std::min(1.0f, reflection * gain);
}

float Surface::HighlightOn(const TVec3<float>& normal, const TVec3<float>& towardsLight,
                           const TVec3<float>& towardsEye) const
{
    // Blinn's highlight lies where the normal is half way between light and eye;
    // doubled, the exponent gives one about as large as Phong's. Broad ones are
    // weaker: they share the light out.
    const float alignment = std::max(0.0f, Dot(Normalized(towardsLight + towardsEye), normal));
    const float concentration = std::min(1.0f, (shininess + 2.0f) / 32.0f);
    return 0.6f * specular * concentration * std::pow(alignment, 2.0f * shininess);
}

TVec3<float> Surface::Seen(const TVec3<float>& colour, const TVec3<float>& light, const TVec3<float>& shine,
                           const TVec2<float>& texCoord) const
{
    TVec3<float> seen =
        Times(colour, light) + Times(shine, Textured(eMaterialSlotSpecular, highlight, texCoord));
    if (!IsBlack(ambient)) {
        const auto unlit = [](float value) { return std::clamp(1.0f - value, 0.0f, 1.0f); };
        seen = seen + Times(Times(colour, ambient), {unlit(light.x), unlit(light.y), unlit(light.z)});
    }
    if (!IsBlack(emission))
        seen = seen + Textured(eMaterialSlotEmission, emission, texCoord);
    return Exposed(seen);
}

SurfaceTable::SurfaceTable(const PictureRequest& request)
{
    if (request.surfaces) {
        m_surfaces = *request.surfaces;
        return;
    }
    m_surfaces.reserve(request.meshes->size());
    QMap<QString, QImage> images; // those in use
    for (const PosedMesh& mesh : *request.meshes) {
        const QString key = mesh.materialParameters.value(QStringLiteral("texture")).toString();
        if (request.textures && request.textures->contains(key) && !images.contains(key))
            images.insert(key, TextureImage(request.textures->value(key)));
        m_surfaces.push_back(SurfaceOf(mesh.materialParameters, images.value(key)));
    }
}

bool SurfaceTable::HasAny(bool (*question)(const Surface& surface)) const
{
    return std::any_of(m_surfaces.begin(), m_surfaces.end(), question);
}

} // namespace Host
