#pragma once

#include "lumenta/interfaces/IPlugin.h"

class TrianglePlugin final : public IPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID LUMENTA_PLUGIN_IID FILE "plugin.json")

public:
    QList<sServiceInfo> GetServices() const override;
    QObject* CreateService(const QString& strContract, const QString& strId, IApplicationContext& context) override;
};
