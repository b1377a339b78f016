#pragma once

#include "lumenta/interfaces/IRender.h"
#include "reference/host/Model.h"
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

/// What can be asked for as a renderer, the usual one first: those of the
/// plug-ins. The usual one is "embree" where there is one of that name.
QStringList RendererNames();

/// \throws FactoryException no plug-in makes one of this name
/// \throws LoadingException no plug-in makes any
std::unique_ptr<IRender> CreateRenderer(const QString& name);

} // namespace Host
