#pragma once

#include <QStringList>

namespace Host {

/// Where the programs of this package look for plug-ins: the folders of the
/// environment variable LUMENTA_PLUGIN_PATH, parted by colons, then the one that
/// belongs to the running program, wherever it was installed or moved to.
QStringList PluginFolders();

} // namespace Host
