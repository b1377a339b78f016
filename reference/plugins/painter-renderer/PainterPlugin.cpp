#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IPlugin.h"
#include "reference/host/SceneRender.h"
#include "reference/plugins/painter-renderer/PainterRenderer.h"

namespace Host {

class PainterPlugin final : public IPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID LUMENTA_PLUGIN_IID FILE "plugin.json")

public:
    QList<sServiceInfo> GetServices() const override
    {
        return {{QStringLiteral("IRender"), QStringLiteral("painter"), QStringLiteral("Painter")}};
    }

    QObject* CreateService(const QString& strContract, const QString& strId, IApplicationContext&) override
    {
        if (strContract == QLatin1String("IRender") && strId == QLatin1String("painter"))
            return new SceneRender(CreatePainterRenderer());
        throw FactoryException(QStringLiteral("%1 '%2'").arg(strContract, strId));
    }
};

} // namespace Host

#include "PainterPlugin.moc"
