#pragma once

#include "lumenta/Export.h"

#include <QObject>
#include <QString>
#include <QVariant>

/// What the application remembers from one run to the next.
///
/// **Who implements it:** the host. **Who calls it:** plug-ins and services.
/// **Thread:** the application's. **Ownership:** the host's.
class LUMENTA_EXPORT ISettings : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~ISettings() override;

    /// \param strName groups are parted by '/', as in "embree/samples"
    virtual QVariant GetValue(const QString& strName, const QVariant& defaultValue) const = 0;

    /// Emits `onValueChanged`, unless the value is what it was. An invalid value
    /// forgets the setting.
    virtual void SetValue(const QString& strName, const QVariant& value) = 0;

Q_SIGNALS:
    /// A setting has another value; an invalid one where it was forgotten.
    void onValueChanged(const QString& strName, const QVariant& val);
};
