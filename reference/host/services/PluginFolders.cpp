#include "reference/host/services/PluginFolders.h"

#include <QDir>
#include <QFileInfo>

namespace Host {

QStringList PluginFolders()
{
    QStringList folders = qEnvironmentVariable("LUMENTA_PLUGIN_PATH").split(QDir::listSeparator(), Qt::SkipEmptyParts);
    const QString ownFolder = QFileInfo(QStringLiteral("/proc/self/exe")).canonicalPath();
    folders += QDir::cleanPath(ownFolder + QStringLiteral("/../" LUMENTA_PLUGIN_FOLDER));
    return folders;
}

} // namespace Host
