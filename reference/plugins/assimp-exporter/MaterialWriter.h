#pragma once

// Private to the exporter: materials in Assimp's terms.

#include <QImage>
#include <QMap>
#include <QString>
#include <QStringList>

#include <map>
#include <memory>
#include <vector>

class IMaterial;
class IScene;
struct aiMaterial;
struct aiScene;
struct aiTexture;

namespace Host {

struct ExportTraits;

/// Writes each material that is asked for once; no more than its name for a format
/// without materials.
///
/// A texture is a reference to its file, relative to the folder of the model where
/// it lies in that. An image without a file goes into the model, or where its
/// format has no room beside it.
class MaterialWriter {
public:
    /// \param strFileName      of the model
    /// \param traits, warnings outlive the writer; the latter get a sentence for whatever is lost
    MaterialWriter(const IScene& scene, const QString& strFileName, const ExportTraits& traits, QStringList& warnings);
    ~MaterialWriter();

    /// Which of the model's materials it is.
    unsigned int IndexOf(const IMaterial& material);

    /// Hands all of them to `target`.
    void GiveTo(aiScene& target);

    /// To be written beside the model, by their names.
    const QMap<QString, QImage>& GetImagesBeside() const { return m_imagesBeside; }

private:
    std::unique_ptr<aiMaterial> Write(const IMaterial& material);
    QString TextureOf(const IMaterial& material);
    QString Add(const QImage& image, const QString& strMaterial);

    const QString m_strDocumentFolder; ///< Empty for a document that has no file.
    const QString m_strFileName;
    const ExportTraits& m_traits;
    QStringList& m_warnings;
    std::map<const IMaterial*, unsigned int> m_known;
    std::vector<std::unique_ptr<aiMaterial>> m_materials;
    std::vector<std::unique_ptr<aiTexture>> m_textures;
    QMap<QString, QImage> m_imagesBeside;
    QMap<qint64, QString> m_names; ///< Of images without a file, by QImage::cacheKey().
};

} // namespace Host
