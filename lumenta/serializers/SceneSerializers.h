#pragma once

#include "lumenta/Export.h"

#include <QSharedPointer>

class ISceneLoader;
class ISceneSaver;
class ISerializersRegistry;
class QString;

/// \file
/// Which loader or saver a scene file goes through.
///
/// The file's suffix decides: what follows the last dot of its name, folders
/// aside. "scene.tar.gz" has "gz", ".hidden" has "hidden", and both "scene" and
/// "scene." have the empty one, which fits only an entry with an empty extension.
/// Upper and lower case are alike. The first entry of the registry that fits is
/// taken, even where its creation then fails.
///
/// The registry must not be null; what it throws passes through. Where there is no
/// memory to share what was made, it is deleted and std::bad_alloc thrown. Its
/// thread.

/// A new loader for the file; null where the registry could not make it.
///
/// The object is deleted with the last shared reference; QPointer and QWeakPointer
/// to it share the same count.
/// \throws LoadingException "Can't find scene loader for file '<name>'", the name
///         without folders: no loader fits
LUMENTA_EXPORT QSharedPointer<ISceneLoader> CreateSceneLoader(const ISerializersRegistry* registry,
                                                              const QString& fileName);

/// Whether a loader fits the file. Creates nothing.
LUMENTA_EXPORT bool CanLoadScene(const ISerializersRegistry* registry, const QString& fileName);

/// A new saver for the file, shared as a loader is; null where the registry could
/// not make it.
/// \throws LoadingException "Can't find scene saver for file '<name>'": no saver
///         fits. Callers catch it as a LoadingException, although they save.
LUMENTA_EXPORT QSharedPointer<ISceneSaver> CreateSceneSaver(const ISerializersRegistry* registry,
                                                            const QString& fileName);

/// Whether a saver fits the file. Creates nothing.
LUMENTA_EXPORT bool CanSaveScene(const ISerializersRegistry* registry, const QString& fileName);
