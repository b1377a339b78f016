#pragma once

#include "lumenta/Export.h"

#include <QMap>
#include <QObject>
#include <QString>
#include <QVariant>

/// Publishes a picture or a document somewhere: a gallery, a server, a folder.
///
/// **Who implements it:** a plug-in. **Who calls it:** the host, for one upload
/// after another.
/// **Thread:** the one that the uploader lives in. **Ownership:** belongs to
/// whoever had the plug-in make it.
/// **Order:** Upload(); any number of `progress`; then exactly one of `done`,
/// `failed`, `failedAuth` and `requestSettings`. Where the user has to fetch a pin in a
/// browser, `urlForPin` comes in between, and the uploader waits for SetPin().
class LUMENTA_EXPORT IUploader : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~IUploader() override;

    /// The pin that the user was shown at the address of `urlForPin`.
    /// \throws Exception "Not implement", unless overridden: for uploaders that
    ///         never emit that signal; so spelled, since callers compare it
    virtual void SetPin(const QString& strPin);

    /// Begins an upload; may return before it ends.
    /// \param settings where to and how, as the uploader's own documentation
    ///                 names them
    /// \throws LogicException the last upload has not ended
    virtual void Upload(const QString& strFileName, const QMap<QString, QVariant>& settings) = 0;

    /// Ends an upload early; `failed` tells so. Without one nothing happens.
    virtual void Cancel() = 0;

Q_SIGNALS:
    void progress(int nPercent); ///< 0 to 100.
    /// It can be seen at this address.
    void done(const QString& strAddress);
    void failed(const QString& strError); ///< Why, in words for a person.
    /// Name or password are not accepted.
    void failedAuth();
    /// Settings are missing: ask the user for them, then upload again.
    void requestSettings();
    /// The user has to fetch a pin at this address.
    void urlForPin(const QString&);
};
