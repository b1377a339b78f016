#pragma once

#include "reference/host/Model.h"
#include "reference/host/Picture.h"
#include "reference/host/Progress.h"

#include <QStringList>

#include <memory>

namespace Host {

// The one place of the command that knows who does the work.

/// Reads a model file with the first plug-in that can: one of those that know
/// its extension, or any where none does. The plug-ins come from the folders of
/// the environment variable LUMENTA_PLUGIN_PATH, parted by colons, then from the
/// command's own. Files there that are no plug-ins for this host are warned of.
/// \throws FileException
/// \throws LoadingException it can't be loaded, or no plug-in reads models
Model ReadModel(const QString& fileName, const Progress& progress);

/// Names of the renderers there are, the usual one first.
QStringList RendererNames();

/// \throws FactoryException there is none of this name
std::unique_ptr<IPictureRenderer> CreateRenderer(const QString& name);

} // namespace Host
