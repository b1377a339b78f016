#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IPlugin.h"
#include "reference/plugins/assimp-loader/AssimpModelLoader.h"

namespace Host {

class AssimpPlugin final : public IPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID LUMENTA_PLUGIN_IID FILE "plugin.json")

public:
    QList<sServiceInfo> GetServices() const override
    {
        return {{QStringLiteral("IModelLoader"), QStringLiteral("assimp"), QStringLiteral("Assimp")}};
    }

    QObject* CreateService(const QString& strContract, const QString& strId, IApplicationContext&) override
    {
        if (strContract == QLatin1String("IModelLoader") && strId == QLatin1String("assimp"))
            return new AssimpModelLoader;
        throw FactoryException(QStringLiteral("%1 '%2'").arg(strContract, strId));
    }
};

} // namespace Host

#include "AssimpPlugin.moc"
