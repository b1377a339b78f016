#pragma once

#include "lumenta/interfaces/ISettings.h"

#include <QSettings>

namespace Host {

/// Settings in an INI file, written when control returns to the event loop and
/// at the end.
class Settings final : public ISettings {
    Q_OBJECT

public:
    /// \param strFileName need not exist yet, nor its folder
    explicit Settings(const QString& strFileName, QObject* pParent = nullptr);

    QVariant GetValue(const QString& strName, const QVariant& defaultValue) const override;
    void SetValue(const QString& strName, const QVariant& value) override;

private:
    QSettings m_file;
};

} // namespace Host
