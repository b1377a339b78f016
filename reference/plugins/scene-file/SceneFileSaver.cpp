#include "reference/plugins/scene-file/SceneFileSaver.h"

#include "lumenta/foundation/Exceptions.h"
#include "reference/plugins/scene-file/DocumentFile.h"
#include "reference/plugins/scene-file/DocumentWriter.h"

#include <QDir>
#include <QFileInfo>

namespace Host {

SceneFileSaver::SceneFileSaver() = default;

void SceneFileSaver::Save(const QString& strFileName, const IScene& scene)
{
    m_warnings.clear();
    // As links lead to it, and as the paths of images are given.
    const QString folder = QFileInfo(strFileName).absoluteDir().canonicalPath();
    if (folder.isEmpty()) throw FileException(strFileName, QStringLiteral("Can't open the file"));
    WriteDocumentFile(strFileName, WriteDocument(scene, folder, m_warnings));
}

} // namespace Host
