#include "reference/plugins/assimp-loader/MaterialReader.h"

#include "lumenta/foundation/Color.h"
#include "reference/host/Studio.h"
#include "reference/plugins/assimp-loader/AssimpValues.h"
#include "reference/plugins/assimp-loader/MetadataReader.h"
#include "reference/plugins/assimp-loader/Report.h"

#include <assimp/material.h>
#include <assimp/scene.h>

#include <limits>

namespace Host {

namespace {

void ReadColor(const aiMaterial& source, const char* key, unsigned int type, unsigned int index, bool isLinear,
               const char* name, Material& material)
{
    aiColor4D color;
    if (source.Get(key, type, index, color) != aiReturn_SUCCESS) return;
    material.parameters[QLatin1String(name)] = isLinear ? QColor(PixelFromLinear({color.r, color.g, color.b}))
                                                        : ColorToQColor({color.r, color.g, color.b, color.a});
}

void ReadNumber(const aiMaterial& source, const char* key, unsigned int type, unsigned int index, const char* name,
                Material& material)
{
    ai_real number = 0;
    if (source.Get(key, type, index, number) == aiReturn_SUCCESS && std::isfinite(number))
        material.parameters[QLatin1String(name)] = static_cast<double>(number);
}

/// The colour texture. Files with metals and roughness call it the base colour.
void ReadTexture(const aiMaterial& source, ReadMaterial& read)
{
    for (const aiTextureType type : {aiTextureType_DIFFUSE, aiTextureType_BASE_COLOR}) {
        aiString path;
        if (source.Get(AI_MATKEY_TEXTURE(type, 0), path) != aiReturn_SUCCESS || path.length == 0)
            continue;
        read.material.parameters[QStringLiteral("texture")] = ToText(path);
        int channel = 0;
        if (source.Get(AI_MATKEY_UVWSRC(type, 0), channel) == aiReturn_SUCCESS && channel > 0)
            read.textureChannel = static_cast<unsigned int>(channel);
        return;
    }
}

ReadMaterial ReadOne(const aiMaterial& source, bool isLinear)
{
    ReadMaterial read;
    aiString name;
    if (source.Get(AI_MATKEY_NAME, name) == aiReturn_SUCCESS)
        read.material.name = ToText(name);

    ReadColor(source, AI_MATKEY_COLOR_DIFFUSE, isLinear, "diffuse", read.material);
    ReadColor(source, AI_MATKEY_COLOR_SPECULAR, isLinear, "specular", read.material);
    ReadColor(source, AI_MATKEY_COLOR_AMBIENT, isLinear, "ambient", read.material);
    ReadColor(source, AI_MATKEY_COLOR_EMISSIVE, isLinear, "emissive", read.material);
    ReadNumber(source, AI_MATKEY_OPACITY, "opacity", read.material);
    // Nobody models what cannot be seen: exporters disagree about which end is opaque.
    if (read.material.parameters.value(QStringLiteral("opacity")) == 0.0)
        read.material.parameters.remove(QStringLiteral("opacity"));
    ReadNumber(source, AI_MATKEY_SHININESS, "shininess", read.material);
    int twoSided = 0;
    if (source.Get(AI_MATKEY_TWOSIDED, twoSided) == aiReturn_SUCCESS)
        read.material.parameters[QStringLiteral("twoSided")] = twoSided != 0;
    ReadTexture(source, read);
    return read;
}

/// Either a file image of `mWidth` bytes, or `mHeight` rows of texels.
QImage Decode(const aiTexture& texture)
{
    constexpr unsigned int limit = std::numeric_limits<int>::max();
    if (!texture.pcData || texture.mWidth > limit || texture.mHeight > limit)
        return {};
    if (texture.mHeight == 0)
        return QImage::fromData(reinterpret_cast<const uchar*>(texture.pcData), static_cast<int>(texture.mWidth));

    QImage image(static_cast<int>(texture.mWidth), static_cast<int>(texture.mHeight), QImage::Format_ARGB32);
    const aiTexel* texel = texture.pcData;
    for (int y = 0; y < image.height(); ++y) {
        QRgb* const row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x, ++texel)
            row[x] = qRgba(texel->r, texel->g, texel->b, texel->a);
    }
    return image;
}

/// The names under which materials ask for the file's own images.
QMap<int, QStringList> NamesOfImages(const aiScene& source, const std::vector<ReadMaterial>& materials)
{
    QMap<int, QStringList> names;
    for (const ReadMaterial& read : materials) {
        const QString name = read.material.parameters.value(QStringLiteral("texture")).toString();
        const int image = source.GetEmbeddedTextureAndIndex(name.toUtf8().constData()).second;
        if (!name.isEmpty() && image >= 0)
            names[image].append(name);
    }
    return names;
}

} // namespace

std::vector<ReadMaterial> ReadMaterials(const aiScene& source, QMap<QString, QImage>& images, Report& report)
{
    const bool isLinear = HasLinearColors(source);
    std::vector<ReadMaterial> materials;
    for (unsigned int i = 0; i < source.mNumMaterials; ++i)
        materials.push_back(ReadOne(*source.mMaterials[i], isLinear));

    const QMap<int, QStringList> names = NamesOfImages(source, materials);
    for (int i = 0; i < static_cast<int>(source.mNumTextures); ++i) {
        const aiTexture& texture = *source.mTextures[i];
        const QString ownName = texture.mFilename.length > 0 ? ToText(texture.mFilename) : QStringLiteral("*%1").arg(i);
        const QImage image = Decode(texture);
        if (image.isNull())
            report.Warn(QStringLiteral("The embedded image '%1' can't be decoded.").arg(ownName));
        for (const QString& name : names.value(i, {ownName}))
            if (!image.isNull())
                images[name] = image;
    }
    return materials;
}

} // namespace Host
