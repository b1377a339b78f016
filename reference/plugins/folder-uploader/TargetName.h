#pragma once

#include <QString>

namespace Host {

/// The name of an uploaded file, without a folder.
/// \param strPattern "{name}" stands for the file's own name without its ending,
///                   "{date}" for today as 2024-12-31; the ending is added where
///                   the pattern has another one. Empty for the file's own name.
/// \throws Exception it is no name, or that of a hidden file, which a folder
///                   keeps for itself
QString TargetName(const QString& strFileName, const QString& strPattern);

} // namespace Host
