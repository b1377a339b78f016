#pragma once

#include "reference/host/Model.h"
#include "reference/host/Progress.h"

class IModelLoader;

namespace Host {

/// The model in a file, as the loader reads it.
///
/// What `progress` throws cancels the loading and arrives at the caller.
/// \throws FileException, LoadingException as the loader does
Model ReadModel(IModelLoader& loader, const QString& fileName, const Progress& progress = {});

} // namespace Host
