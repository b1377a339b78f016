#pragma once

#include "lumenta/Export.h"

#include <QObject>
#include <QString>
#include <QStringList>

class IScene;

/// Writes scene files of one kind.
///
/// **Who implements it:** a plug-in. **Who calls it:** the host, through the
/// registry (ISerializersRegistry): Save(), then GetWarnings(). **Thread:** the
/// scene's. **Ownership:** belongs to the caller who had it created.
class LUMENTA_EXPORT ISceneSaver : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~ISceneSaver() override;

    /// Writes the scene. Its file name and whether it is modified stay: that is
    /// for the caller, who knows whether this was a copy.
    /// \throws FileException   the file can't be written; one that was there
    ///                         before is untouched
    /// \throws SavingException the scene holds what the format can't keep
    virtual void Save(const QString& strFileName, const IScene& scene) = 0;

    /// What the last Save() left out, in words for a person.
    virtual QStringList GetWarnings() const = 0;
};
