#include "reference/plugins/assimp-loader/AssimpFormats.h"

#include <QRegularExpression>
#include <QSet>

#include <assimp/Importer.hpp>
#include <assimp/importerdesc.h>

#include <algorithm>

namespace Host {

namespace {

/// "Blender 3D Importer (http://www.blender3d.org)" is the title "Blender 3D".
QString TitleOf(const aiImporterDesc& importer)
{
    static const QRegularExpression noise(QStringLiteral("\\s+(Importer|Reader)\\b|\\s*\\(https?:[^)]*\\)"));
    return QString::fromUtf8(importer.mName).remove(noise).trimmed();
}

std::vector<ModelFormatInfo> CollectFormats()
{
    const Assimp::Importer importer;
    std::vector<ModelFormatInfo> formats;
    QSet<QString> known;
    for (std::size_t i = 0; i < importer.GetImporterCount(); ++i) {
        const aiImporterDesc& description = *importer.GetImporterInfo(i);
        ModelFormatInfo format;
        format.title = TitleOf(description);
        format.extensions = QString::fromUtf8(description.mFileExtensions).split(QLatin1Char(' '), Qt::SkipEmptyParts);
        const QSet<QString> extensions(format.extensions.begin(), format.extensions.end());
        if (known.contains(extensions))
            continue;
        known.unite(extensions);
        format.description =
            QStringLiteral("%1 (*.%2)").arg(format.title, format.extensions.join(QStringLiteral(" *.")));
        formats.push_back(format);
    }
    std::sort(formats.begin(), formats.end(), [](const ModelFormatInfo& a, const ModelFormatInfo& b) {
        return a.title.compare(b.title, Qt::CaseInsensitive) < 0;
    });
    return formats;
}

} // namespace

const std::vector<ModelFormatInfo>& AssimpFormats()
{
    static const std::vector<ModelFormatInfo> formats = CollectFormats();
    return formats;
}

} // namespace Host
