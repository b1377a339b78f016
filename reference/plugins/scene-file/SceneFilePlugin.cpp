#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IPlugin.h"
#include "lumenta/platform/IApplicationContext.h"
#include "reference/plugins/scene-file/SceneFileLoader.h"
#include "reference/plugins/scene-file/SceneFileSaver.h"

namespace Host {

namespace {

const QString kId = QStringLiteral("scene-file");
const QString kLoader = QStringLiteral("ISceneLoader");
const QString kSaver = QStringLiteral("ISceneSaver");

} // namespace

class SceneFilePlugin final : public IPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID LUMENTA_PLUGIN_IID FILE "plugin.json")

public:
    QList<sServiceInfo> GetServices() const override
    {
        const QString title = QStringLiteral("Lumenta documents");
        const QString extension = QStringLiteral("lumenta");
        return {{kLoader, kId, title, extension}, {kSaver, kId, title, extension}};
    }

    QObject* CreateService(const QString& strContract, const QString& strId, IApplicationContext& context) override
    {
        if (strId == kId && strContract == kLoader) return new SceneFileLoader(context.GetImageManager());
        if (strId == kId && strContract == kSaver) return new SceneFileSaver;
        throw FactoryException(QStringLiteral("%1 '%2'").arg(strContract, strId));
    }
};

} // namespace Host

#include "SceneFilePlugin.moc"
