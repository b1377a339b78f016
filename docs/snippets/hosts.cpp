#include "docs/snippets/Snippets.h"

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IImageManager.h"
#include "lumenta/interfaces/IPlugin.h"

#include <QJsonObject>
#include <QPluginLoader>

namespace {

//! [load]
/// The root object of a plug-in, which Qt owns. None of its code runs before its
/// metadata are found to fit: a plug-in of another version would crash.
IPlugin& LoadPlugin(const QString& file)
{
    QPluginLoader loader(file);
    const QJsonObject metadata = loader.metaData();
    const QJsonObject ours = metadata.value(QStringLiteral("MetaData")).toObject();
    if (metadata.value(QStringLiteral("IID")).toString() != QLatin1String(LUMENTA_PLUGIN_IID)
        || ours.value(QStringLiteral("contract")).toString() != QLatin1String(LUMENTA_CONTRACT_VERSION))
        throw LoadingException(QStringLiteral("'%1' is no plug-in for this host").arg(file));

    // What is missing should be missed now; and code that made something must stay.
    loader.setLoadHints(QLibrary::ResolveAllSymbolsHint | QLibrary::PreventUnloadHint);
    auto* const pPlugin = qobject_cast<IPlugin*>(loader.instance());
    if (!pPlugin) throw LoadingException(QStringLiteral("'%1': %2").arg(file, loader.errorString()));
    return *pPlugin;
}

/// A service of a plug-in; null where it offers none of that contract.
template <typename Contract>
std::unique_ptr<Contract> CreateFirst(IPlugin& plugin, IApplicationContext& context)
{
    const QString contract = QString::fromLatin1(Contract::staticMetaObject.className());
    const QList<sServiceInfo> services = plugin.GetServices();
    for (const sServiceInfo& info : services) {
        if (info.strContract != contract) continue;
        std::unique_ptr<QObject> made(plugin.CreateService(contract, info.strId, context));
        if (!qobject_cast<Contract*>(made.get())) throw FactoryException(contract);
        return std::unique_ptr<Contract>(static_cast<Contract*>(made.release()));
    }
    return nullptr;
}
//! [load]

} // namespace

std::unique_ptr<IImageManager> ImageManagerOf(const QString& file, IApplicationContext& context)
{
    return CreateFirst<IImageManager>(LoadPlugin(file), context);
}
