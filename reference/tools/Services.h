#pragma once

#include "reference/host/Model.h"
#include "reference/host/Picture.h"
#include "reference/host/Progress.h"

#include <QStringList>

#include <memory>

namespace Host {

// The one place of the command that knows who does the work.

/// Reads a model file.
/// \throws FileException, LoadingException
Model ReadModel(const QString& fileName, const Progress& progress);

/// Names of the renderers there are, the usual one first.
QStringList RendererNames();

/// \throws FactoryException there is none of this name
std::unique_ptr<IPictureRenderer> CreateRenderer(const QString& name);

} // namespace Host
