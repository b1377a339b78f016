#pragma once

#include "reference/host/Model.h"
#include "reference/host/services/Document.h"
#include "reference/tools/ProgressBar.h"
#include "reference/tools/RenderOptions.h"

namespace Host {

/// Draws the model and writes the picture, the series or the contact sheet
/// that the options ask for. What could not be had for it, a texture for one,
/// is warned of on standard error.
/// \throws Failure
void MakePictures(Model&& model, const RenderOptions& options, ProgressBar& bar);

/// The same of a document.
/// \param source it was opened from
void MakePictures(std::unique_ptr<Document> document, const QString& source, const RenderOptions& options,
                  ProgressBar& bar);

} // namespace Host
