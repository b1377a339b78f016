#pragma once

#include "lumenta/interfaces/IImageManager.h"

namespace Host {

/// What Qt and its plug-ins read here, a row for each family of formats: the
/// usual ones first, those that only a plug-in knows last. No extension is in
/// two rows.
std::vector<ImageLoaderInfo> QtLoaderFormats();

/// What they write, in the same order, a row for each extension; it is also the
/// id.
std::vector<ImageSaverInfo> QtSaverFormats();

} // namespace Host
