#include "reference/host/PluginHost.h"

#include "lumenta/interfaces/ILog.h"
#include "lumenta/platform/IApplicationContext.h"
#include "reference/host/Caught.h"

#include <QDir>
#include <QFile>
#include <QJsonObject>
#include <QPluginLoader>

#include <algorithm>
#include <exception>

namespace Host {

namespace {

/// Why a file is refused.
struct Refused {
    QString reason;
};

void CheckIsLibrary(const QString& fileName)
{
    QFile file(fileName);
    const bool opened = file.open(QIODevice::ReadOnly);
    const QByteArray start = opened ? file.read(4) : QByteArray();
    if (file.error() != QFileDevice::NoError)
        throw Refused{QStringLiteral("it cannot be read: %1; mend that, or take it out of the folder")
                          .arg(file.errorString())};
    if (start != "\177ELF")
        throw Refused{QStringLiteral("it is no library; take it out of the folder")};
}

void CheckMetadata(const QJsonObject& file)
{
    if (file.isEmpty())
        throw Refused{QStringLiteral("it is a library without the metadata of a plug-in; build it with "
                                     "lumenta_add_plugin(), which takes a root class with Q_PLUGIN_METADATA, or "
                                     "take it out of the folder")};
    const QString iid = file.value(QLatin1String("IID")).toString();
    if (iid != QLatin1String(LUMENTA_PLUGIN_IID))
        throw Refused{QStringLiteral("it is a plug-in for '%1', not for '%2'; take it out of the folder")
                          .arg(iid, QStringLiteral(LUMENTA_PLUGIN_IID))};

    const QJsonObject metadata = file.value(QLatin1String("MetaData")).toObject();
    QStringList missing;
    for (const char* const key : {"name", "version", "contract"})
        if (metadata.value(QLatin1String(key)).toString().isEmpty())
            missing += QLatin1Char('"') + QLatin1String(key) + QLatin1Char('"');
    if (!missing.isEmpty())
        throw Refused{QStringLiteral("its metadata lack %1; build it with lumenta_add_plugin(), which writes them")
                          .arg(missing.join(QStringLiteral(", ")))};

    const QString contract = metadata.value(QLatin1String("contract")).toString();
    if (contract != QLatin1String(LUMENTA_CONTRACT_VERSION))
        throw Refused{
            QStringLiteral("it was built for the contracts of version %1, and this host has version %2; build "
                           "it again with Lumenta %2")
                .arg(contract, QStringLiteral(LUMENTA_CONTRACT_VERSION))};
}

/// Runs the plug-in's code for the first time.
IPlugin& RootOf(QPluginLoader& loader)
{
    // A function that is missing should be missed now, not when it is called.
    loader.setLoadHints(QLibrary::ResolveAllSymbolsHint | QLibrary::PreventUnloadHint);
    if (!loader.load())
        throw Refused{QStringLiteral("%1; install what is missing, or build it again").arg(loader.errorString())};

    QObject* root = nullptr;
    try {
        root = loader.instance();
    } catch (...) {
        throw Refused{QStringLiteral("its root object threw while it was created: %1; ask its author for a version "
                                     "that can be loaded")
                          .arg(CaughtText())};
    }
    if (IPlugin* const plugin = qobject_cast<IPlugin*>(root))
        return *plugin;
    throw Refused{QStringLiteral("its root object, a %1, is no IPlugin; derive the class with Q_PLUGIN_METADATA from "
                                 "IPlugin")
                      .arg(QLatin1String(root ? root->metaObject()->className() : "null"))};
}

QList<sServiceInfo> ServicesOfPlugin(const IPlugin& plugin)
{
    try {
        return plugin.GetServices();
    } catch (...) {
        throw Refused{QStringLiteral("its root object threw when asked for its services: %1; ask its author for a "
                                     "version that can be loaded")
                          .arg(CaughtText())};
    }
}

/// "IModelLoader 'assimp'"
QString Spelled(const QString& contract, const QString& id)
{
    return QStringLiteral("%1 '%2'").arg(contract, id);
}

} // namespace

PluginHost::PluginHost(IApplicationContext& context)
    : m_context(context)
{
}

void PluginHost::LoadFolder(const QString& folder)
{
    const QFileInfoList files =
        QDir(folder).entryInfoList({QStringLiteral("*.so")}, QDir::Files | QDir::CaseSensitive, QDir::Name);
    for (const QFileInfo& file : files) {
        const QString canonical = file.canonicalFilePath();
        if (m_met.contains(canonical))
            continue;
        m_met.insert(canonical);
        try {
            LoadFile(file.absoluteFilePath());
        } catch (const Refused& refused) {
            m_refusals.push_back(
                {file.absoluteFilePath(),
                 QStringLiteral("The plug-in '%1' is not loaded: %2").arg(file.absoluteFilePath(), refused.reason)});
        }
    }
}

void PluginHost::LoadFile(const QString& file)
{
    CheckIsLibrary(file);
    QPluginLoader loader(file);
    CheckMetadata(loader.metaData());

    const QString name =
        loader.metaData().value(QLatin1String("MetaData")).toObject().value(QLatin1String("name")).toString();
    const auto twin =
        std::find_if(m_loaded.begin(), m_loaded.end(), [&](const Loaded& each) { return each.name == name; });
    if (twin != m_loaded.end())
        throw Refused{QStringLiteral("a plug-in named '%1' is loaded already, from '%2'; remove one of the two")
                          .arg(name, twin->file)};

    IPlugin& plugin = RootOf(loader);
    const QList<sServiceInfo> services = ServicesOfPlugin(plugin);
    m_loaded.push_back({name, file});
    for (const sServiceInfo& service : services)
        AddService({{service.strContract, service.strId, service.strTitle, name, service.strExtension}, &plugin}, file);
}

void PluginHost::AddService(const Offer& offer, const QString& file)
{
    const PluginService& service = offer.service;
    if (const Offer* const twin = Find(service.contract, service.id))
        m_refusals.push_back({file, QStringLiteral("The plug-in '%1' is not used for %2: '%3' offers that already; "
                                                   "give one of the two another id")
                                        .arg(file, Spelled(service.contract, service.id), twin->service.plugin)});
    else
        m_offers.push_back(offer);
}

std::vector<PluginService> PluginHost::Services() const
{
    std::vector<PluginService> services;
    for (const Offer& offer : m_offers)
        services.push_back(offer.service);
    return services;
}

const PluginHost::Offer* PluginHost::Find(const QString& contract, const QString& id) const
{
    const auto found = std::find_if(m_offers.begin(), m_offers.end(), [&](const Offer& offer) {
        return offer.service.contract == contract && offer.service.id == id;
    });
    return found == m_offers.end() ? nullptr : &*found;
}

std::unique_ptr<QObject> PluginHost::Create(const QString& contract, const QString& id) const
{
    const Offer* const offer = Find(contract, id);
    if (!offer)
        throw FactoryException(Spelled(contract, id));
    try {
        return std::unique_ptr<QObject>(offer->plugin->CreateService(contract, id, m_context));
    } catch (const Exception&) {
        throw;
    } catch (...) {
        throw FactoryException(QStringLiteral("%1: the plug-in '%2' threw: %3")
                                   .arg(Spelled(contract, id), offer->service.plugin, CaughtText()));
    }
}

void PluginHost::WarnOnce(const QString& strText) const
{
    ILog* const pLog = m_context.GetLog();
    if (!pLog || m_warned.contains(strText)) return;
    m_warned.insert(strText);
    pLog->Write(eLogWarning, strText);
}

void PluginHost::RejectClass(const QString& contract, const QString& id, const QObject* object) const
{
    const QString made = object ? QStringLiteral("made a %1").arg(QLatin1String(object->metaObject()->className()))
                                : QStringLiteral("gave none");
    throw FactoryException(
        QStringLiteral("%1: the plug-in '%2' %3").arg(Spelled(contract, id), Find(contract, id)->service.plugin, made));
}

} // namespace Host
