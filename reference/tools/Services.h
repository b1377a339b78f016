#pragma once

#include "reference/host/services/Application.h"

namespace Host {

/// The application of the command. Its plug-ins come from the folders of the
/// environment variable LUMENTA_PLUGIN_PATH, parted by colons, then from the
/// command's own folder. Warnings of its log go to standard error, and all lines to
/// the file that the variable LUMENTA_LOG names.
/// \throws FileException that file can't be written
Application& TheApplication();

} // namespace Host
