#include "reference/plugins/assimp-exporter/AssimpExporter.h"

#include "lumenta/foundation/Exceptions.h"
#include "reference/host/images/Png.h"
#include "reference/host/images/ReplaceFile.h"
#include "reference/plugins/assimp-exporter/CheckedFiles.h"
#include "reference/plugins/assimp-exporter/ExportFormats.h"
#include "reference/plugins/assimp-exporter/SceneWriter.h"
#include "reference/plugins/assimp-exporter/StagedFiles.h"

#include <QFile>
#include <QFileInfo>

#include <assimp/Exporter.hpp>
#include <assimp/scene.h>

#include <exception>

namespace Host {

namespace {

/// \throws Exception none is meant
std::size_t FormatFor(const QString& fileName, const QString& id)
{
    const std::vector<sModelExportFormat>& formats = ExportFormats();
    const QString suffix = QFileInfo(fileName).suffix();
    QStringList known;
    for (std::size_t i = 0; i < formats.size(); ++i) {
        known += formats[i].strId;
        const bool isMeant =
            id.isEmpty() ? formats[i].extensions.contains(suffix, Qt::CaseInsensitive) : formats[i].strId == id;
        if (isMeant) return i;
    }
    throw Exception(QStringLiteral("there is no format '%1'; there are: %2")
                        .arg(id.isEmpty() ? suffix : id, known.join(QStringLiteral(", "))));
}

/// \throws Exception in Assimp's words, or the system's
void WriteByAssimp(const aiScene& model, const char* format, const QString& fileName)
{
    QString failure;
    QString reason;
    try {
        Assimp::Exporter exporter;
        exporter.SetIOHandler(new CheckedFiles(failure));
        if (exporter.Export(&model, format, QFile::encodeName(fileName).toStdString()) != aiReturn_SUCCESS)
            reason = QString::fromUtf8(exporter.GetErrorString()).simplified();
    } catch (const std::exception& exception) {
        reason = QString::fromUtf8(exception.what()).simplified();
    }
    if (!failure.isEmpty()) throw Exception(failure);
    if (!reason.isEmpty() || !QFileInfo::exists(fileName))
        throw Exception(reason.isEmpty() ? QStringLiteral("Assimp has written nothing") : reason);
}

} // namespace

const std::vector<sModelExportFormat>& AssimpExporter::GetFormats() const
{
    return ExportFormats();
}

void AssimpExporter::Export(const IScene& scene, const QString& strFileName, const QString& strFormatId)
{
    m_warnings.clear();
    try {
        Write(scene, strFileName, FormatFor(strFileName, strFormatId));
    } catch (const Exception& exception) {
        throw ExporterException(
            QStringLiteral("'%1' can't be exported: %2").arg(strFileName, exception.GetErrorText()));
    }
}

void AssimpExporter::Write(const IScene& scene, const QString& strFileName, std::size_t nFormat)
{
    const ExportTraits& traits = TraitsOf(nFormat);
    StagedFiles files(strFileName);
    MaterialWriter materials(scene, strFileName, traits, m_warnings);
    const std::unique_ptr<aiScene> model = SceneWriter(scene, traits, materials, m_warnings).Write();
    WriteByAssimp(*model, traits.assimpId, files.GetFileName());

    const QMap<QString, QImage>& images = materials.GetImagesBeside();
    for (auto image = images.begin(); image != images.end(); ++image) {
        const QString problem = ReplaceFile(files.PathOf(image.key()), EncodedPng(*image));
        if (!problem.isEmpty())
            throw Exception(QStringLiteral("the image '%1' can't be written: %2").arg(image.key(), problem));
    }
    files.Publish();
}

} // namespace Host
