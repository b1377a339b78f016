#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IPlugin.h"
#include "reference/plugins/folder-uploader/FolderUploader.h"

namespace Host {

class FolderUploaderPlugin final : public IPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID LUMENTA_PLUGIN_IID FILE "plugin.json")

public:
    QList<sServiceInfo> GetServices() const override
    {
        return {{QStringLiteral("IUploader"), QStringLiteral("folder"), QStringLiteral("Folder")}};
    }

    QObject* CreateService(const QString& strContract, const QString& strId, IApplicationContext&) override
    {
        if (strContract == QLatin1String("IUploader") && strId == QLatin1String("folder")) return new FolderUploader;
        throw FactoryException(QStringLiteral("%1 '%2'").arg(strContract, strId));
    }
};

} // namespace Host

#include "FolderUploaderPlugin.moc"
