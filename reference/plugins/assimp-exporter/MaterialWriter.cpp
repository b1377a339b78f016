#include "reference/plugins/assimp-exporter/MaterialWriter.h"

#include "lumenta/files/Paths.h"
#include "lumenta/interfaces/IImage.h"
#include "lumenta/interfaces/IMaterial.h"
#include "lumenta/interfaces/IScene.h"
#include "reference/host/images/Png.h"
#include "reference/plugins/assimp-exporter/ExportFormats.h"

#include <QFileInfo>

#include <assimp/material.h>
#include <assimp/scene.h>
#include <assimp/texture.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Host {

namespace {

/// A step of eight bits, and a hair more: texts round it, and readers cut off.
float OnScreen(float linear)
{
    constexpr float steps = 255.0f, hair = 1.0001f;
    const float held = std::clamp(linear, 0.0f, 1.0f);
    const float screen = held <= 0.0031308f ? 12.92f * held : 1.055f * std::pow(held, 1.0f / 2.4f) - 0.055f;
    return std::min(std::round(screen * steps) / steps * hair, 1.0f);
}

aiColor3D InFile(const ColorF& color, float factor, bool isLinear)
{
    const auto component = [&](float light) {
        return isLinear ? std::clamp(light * factor, 0.0f, 1.0f) : OnScreen(light * factor);
    };
    return {component(color.r), component(color.g), component(color.b)};
}

aiString ToAssimp(const QString& text)
{
    return aiString(text.toUtf8().constData());
}

std::unique_ptr<aiTexture> Embedded(const QByteArray& png)
{
    auto texture = std::make_unique<aiTexture>();
    const auto size = static_cast<std::size_t>(png.size());
    texture->mWidth = static_cast<unsigned int>(size); // of bytes, where the height is 0
    std::strcpy(texture->achFormatHint, "png");
    texture->pcData = new aiTexel[(size + sizeof(aiTexel) - 1) / sizeof(aiTexel)];
    std::memcpy(static_cast<void*>(texture->pcData), png.constData(), size);
    return texture;
}

bool UsesOtherSlots(const IMaterial& material)
{
    for (int slot = 0; slot < eMaterialSlotCount; ++slot) {
        const auto each = static_cast<eMaterialSlot>(slot);
        const bool isFilled = material.GetImage(each) || !material.GetImageFile(each).isEmpty();
        if (each != eMaterialSlotDiffuse && isFilled && material.IsSlotEnabled(each)) return true;
    }
    return false;
}

template <typename T>
void Release(std::vector<std::unique_ptr<T>>& from, T**& to, unsigned int& count)
{
    to = new T*[from.size()];
    count = static_cast<unsigned int>(from.size());
    std::transform(from.begin(), from.end(), to, [](std::unique_ptr<T>& each) { return each.release(); });
    from.clear();
}

} // namespace

MaterialWriter::MaterialWriter(const IScene& scene, const QString& strFileName, const ExportTraits& traits,
                               QStringList& warnings)
    : m_strDocumentFolder(scene.GetFileName().isEmpty() ? QString() : QFileInfo(scene.GetFileName()).absolutePath())
    , m_strFileName(strFileName)
    , m_traits(traits)
    , m_warnings(warnings)
{
}

MaterialWriter::~MaterialWriter() = default;

unsigned int MaterialWriter::IndexOf(const IMaterial& material)
{
    const auto known = m_known.find(&material);
    if (known != m_known.end()) return known->second;
    m_materials.push_back(Write(material));
    return m_known[&material] = static_cast<unsigned int>(m_materials.size() - 1);
}

void MaterialWriter::GiveTo(aiScene& target)
{
    Release(m_materials, target.mMaterials, target.mNumMaterials);
    if (!m_textures.empty()) Release(m_textures, target.mTextures, target.mNumTextures);
}

std::unique_ptr<aiMaterial> MaterialWriter::Write(const IMaterial& material)
{
    auto target = std::make_unique<aiMaterial>();
    const aiString name = ToAssimp(material.GetName());
    const aiColor3D diffuse = InFile(material.GetDiffuseColor(), 1.0f, m_traits.isLinear);
    const aiColor3D specular = InFile(material.GetSpecularColor(), material.GetSpecularLevel(), m_traits.isLinear);
    const aiColor3D emission = InFile(material.GetEmissionColor(), material.GetEmissionLevel(), m_traits.isLinear);
    const float opacity = material.GetOpacity(), shininess = material.GetShininess();
    const int isTwoSided = material.IsTwoSided();
    target->AddProperty(&name, AI_MATKEY_NAME);
    if (!m_traits.hasMaterials) return target; // some writers would give the texture of one mesh to all
    target->AddProperty(&diffuse, 1, AI_MATKEY_COLOR_DIFFUSE);
    target->AddProperty(&specular, 1, AI_MATKEY_COLOR_SPECULAR);
    target->AddProperty(&emission, 1, AI_MATKEY_COLOR_EMISSIVE);
    target->AddProperty(&opacity, 1, AI_MATKEY_OPACITY);
    target->AddProperty(&shininess, 1, AI_MATKEY_SHININESS);
    target->AddProperty(&isTwoSided, 1, AI_MATKEY_TWOSIDED);

    const QString texture = material.IsSlotEnabled(eMaterialSlotDiffuse) ? TextureOf(material) : QString();
    if (!texture.isEmpty()) {
        const aiString path = ToAssimp(texture);
        target->AddProperty(&path, AI_MATKEY_TEXTURE(aiTextureType_DIFFUSE, 0));
    }
    if (UsesOtherSlots(material))
        m_warnings += QStringLiteral("Of the textures of material '%1' only the diffuse one was taken over.")
                          .arg(material.GetName());
    return target;
}

QString MaterialWriter::TextureOf(const IMaterial& material)
{
    const IImage* const image = material.GetImage(eMaterialSlotDiffuse);
    const QString own = image ? image->GetFileName() : QString();
    const QString stored = material.GetImageFile(eMaterialSlotDiffuse);
    const QString file = own.isEmpty() ? TryToFindFileOptimistic(stored, m_strDocumentFolder) : own;
    if (!QFileInfo::exists(file)) {
        if (image && !image->GetSize().isEmpty()) return Add(image->ToQImage(), material.GetName());
        if (!file.isEmpty())
            m_warnings +=
                QStringLiteral("The texture '%1' of material '%2' was not found; it is referred to all the same.")
                    .arg(file, material.GetName());
    }
    if (file.isEmpty()) return {};
    return GetRelativePath(QFileInfo(m_strFileName).absolutePath(), QFileInfo(file).absoluteFilePath());
}

QString MaterialWriter::Add(const QImage& image, const QString& strMaterial)
{
    QString& name = m_names[image.cacheKey()];
    if (!name.isEmpty()) return name;
    if (m_traits.embedsImages) {
        name = QStringLiteral("*%1").arg(m_textures.size());
        m_textures.push_back(Embedded(EncodedPng(image)));
        return name;
    }
    const QString base = QFileInfo(m_strFileName).completeBaseName();
    name = QStringLiteral("%1-texture-%2.png").arg(base).arg(m_imagesBeside.size() + 1);
    m_imagesBeside[name] = image;
    m_warnings += QStringLiteral("The format has no room for the image of material '%1', which was written to '%2'.")
                      .arg(strMaterial, name);
    return name;
}

} // namespace Host
