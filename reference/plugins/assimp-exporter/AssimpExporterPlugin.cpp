#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IPlugin.h"
#include "reference/plugins/assimp-exporter/AssimpExporter.h"

namespace Host {

class AssimpExporterPlugin final : public IPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID LUMENTA_PLUGIN_IID FILE "plugin.json")

public:
    QList<sServiceInfo> GetServices() const override
    {
        return {{QStringLiteral("IExporter"), QStringLiteral("assimp"), QStringLiteral("Assimp")}};
    }

    QObject* CreateService(const QString& strContract, const QString& strId, IApplicationContext&) override
    {
        if (strContract == QLatin1String("IExporter") && strId == QLatin1String("assimp")) return new AssimpExporter;
        throw FactoryException(QStringLiteral("%1 '%2'").arg(strContract, strId));
    }
};

} // namespace Host

#include "AssimpExporterPlugin.moc"
