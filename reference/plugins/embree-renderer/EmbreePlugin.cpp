#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IPlugin.h"
#include "reference/host/SceneRender.h"
#include "reference/plugins/embree-renderer/EmbreeRenderer.h"

namespace Host {

class EmbreePlugin final : public IPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID LUMENTA_PLUGIN_IID FILE "plugin.json")

public:
    QList<sServiceInfo> GetServices() const override
    {
        return {{QStringLiteral("IRender"), QStringLiteral("embree"), QStringLiteral("Ray tracer")}};
    }

    QObject* CreateService(const QString& strContract, const QString& strId, IApplicationContext&) override
    {
        if (strContract == QLatin1String("IRender") && strId == QLatin1String("embree"))
            return new SceneRender(CreateEmbreeRenderer());
        throw FactoryException(QStringLiteral("%1 '%2'").arg(strContract, strId));
    }
};

} // namespace Host

#include "EmbreePlugin.moc"
