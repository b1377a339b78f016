#pragma once

#include "reference/host/IModelExporter.h"

#include <QFileInfo>

#include <memory>
#include <vector>

namespace Host {

class PluginHost;

/// Shares the exporter that it is a side of.
using ModelExporter = std::shared_ptr<IModelExporter>;

/// Those of all plug-ins that can be made, new ones.
std::vector<ModelExporter> ModelExporters(const PluginHost& plugins);

/// The first that writes files of this suffix; null where none does.
ModelExporter ExporterFor(const std::vector<ModelExporter>& exporters, const QString& strFileName);

/// Files that an export might replace beside the one it is asked for, since some
/// formats take several whose names begin alike: "duck.mtl", "duck-1.png" for
/// "duck.obj".
QFileInfoList FilesBeside(const QString& strFileName);

} // namespace Host
