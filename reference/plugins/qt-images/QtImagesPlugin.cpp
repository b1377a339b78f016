#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IPlugin.h"
#include "reference/plugins/qt-images/QtImageManager.h"

namespace Host {

class QtImagesPlugin final : public IPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID LUMENTA_PLUGIN_IID FILE "plugin.json")

public:
    QList<sServiceInfo> GetServices() const override
    {
        return {{QStringLiteral("IImageManager"), QStringLiteral("qt"), QStringLiteral("Images")}};
    }

    QObject* CreateService(const QString& strContract, const QString& strId, IApplicationContext& context) override
    {
        if (strContract == QLatin1String("IImageManager") && strId == QLatin1String("qt"))
            return new QtImageManager(context);
        throw FactoryException(QStringLiteral("%1 '%2'").arg(strContract, strId));
    }
};

} // namespace Host

#include "QtImagesPlugin.moc"
