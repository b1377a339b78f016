#pragma once

#include "lumenta/Export.h"

#include <QObject>
#include <QString>
#include <QStringList>

class IScene;

/// Reads scene files of one kind.
///
/// **Who implements it:** a plug-in. **Who calls it:** the host, through the
/// registry (ISerializersRegistry): CanLoad() where it wants to know, Load(), then
/// GetWarnings(). **Thread:** the scene's. **Ownership:** belongs to the caller who
/// had it created.
class LUMENTA_EXPORT ISceneLoader : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~ISceneLoader() override;

    /// Whether the beginning of the file looks like one of its kind. A file
    /// that can't be read does not.
    virtual bool CanLoad(const QString& strFileName) const = 0;

    /// Replaces the content of `scene`, in one batch. The file name of the
    /// scene becomes this one, and there is nothing to save.
    /// \throws FileException    the file can't be read
    /// \throws LoadingException it makes no sense. The scene is then as it was.
    virtual void Load(const QString& strFileName, IScene& scene) = 0;

    /// What the last Load() could not take over, in words for a person.
    virtual QStringList GetWarnings() const = 0;
};
