#include "reference/host/services/Settings.h"

#include "reference/host/Caught.h"

namespace Host {

Settings::Settings(const QString& strFileName, QObject* pParent)
    : ISettings(pParent)
    , m_file(strFileName, QSettings::IniFormat)
{
    m_file.setIniCodec("UTF-8");
}

QVariant Settings::GetValue(const QString& strName, const QVariant& defaultValue) const
{
    return m_file.value(strName, defaultValue);
}

void Settings::SetValue(const QString& strName, const QVariant& value)
{
    // What is not there differs from every value, also from an equal default.
    if (m_file.value(strName) == value && m_file.contains(strName) == value.isValid()) return;
    if (value.isValid())
        m_file.setValue(strName, value);
    else
        m_file.remove(strName);
    Tell("onValueChanged", [&] { Q_EMIT onValueChanged(strName, value); });
}

} // namespace Host
