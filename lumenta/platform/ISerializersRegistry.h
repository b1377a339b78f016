#pragma once

#include "lumenta/Export.h"

#include <QList>
#include <QString>

class ISceneLoader;
class ISceneSaver;

/// A loader or a saver of scene files.
struct SerializerInfo {
    QString title;     ///< Shown to people.
    QString id;        ///< Tells the registry which one to make.
    QString extension; ///< Without the dot; upper and lower case are alike.
};

/// Knows the loaders and savers of scene files.
///
/// **Who implements it:** the host, which fills it from its plug-ins. **Who calls
/// it:** the library's look-up by file name, file dialogs.
/// **Thread:** the application's. **Ownership:** what it creates belongs to the
/// caller. Lists are in order of registration: the first that fits is taken.
/// **Errors:** what a plug-in throws while it makes one passes through.
class LUMENTA_EXPORT ISerializersRegistry {
public:
    // The places are fixed. No virtual destructor: the host alone ends it.

    virtual QList<SerializerInfo> GetSavers() const = 0;  ///< In order of registration.
    virtual QList<SerializerInfo> GetLoaders() const = 0; ///< Likewise.

    /// Every extension that a document can be opened from, each once and in
    /// lower case; models, which come in through a model loader, included.
    virtual QList<QString> GetOpenableExtensions() const = 0;

    /// Null where the id is not one of the registry's.
    virtual ISceneLoader* CreateLoader(const QString& id) const = 0;

    /// Null where the id is not one of the registry's.
    virtual ISceneSaver* CreateSaver(const QString& id) const = 0;

protected:
    ISerializersRegistry() = default;
    ISerializersRegistry(const ISerializersRegistry&) = default;
    ISerializersRegistry& operator=(const ISerializersRegistry&) = default;
    ~ISerializersRegistry() = default;
};
