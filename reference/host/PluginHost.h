#pragma once

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IPlugin.h"

#include <QSet>
#include <QString>

#include <memory>
#include <vector>

class IApplicationContext;

namespace Host {

/// Something that a loaded plug-in can make.
struct PluginService {
    QString contract; ///< Class name, as in sServiceInfo.
    QString id;       ///< Unique among the services of this contract.
    QString title;
    QString plugin;    ///< The plug-in's name.
    QString extension; ///< As in sServiceInfo.
};

/// A file that is no plug-in for this host, or a service that it can't use.
struct PluginRefusal {
    QString file; ///< With its folder.
    QString text; ///< A sentence for a person: which file, what is wrong and what helps.
};

/// Loads plug-ins and makes what they offer.
///
/// Of a file only the metadata are read until they are known to fit: no code of
/// a plug-in for other contracts ever runs. A file that is refused, for whatever
/// reason, keeps none of the others from being loaded.
///
/// Plug-ins stay loaded until the process ends, also without their host; so
/// services may outlive it, but not the context. Two hosts of one process share
/// the plug-ins' root objects.
///
/// The application's thread.
class PluginHost {
public:
    /// \param context what services are told of the application; outlives the
    ///                host and all services
    explicit PluginHost(IApplicationContext& context);

    /// Loads the files *.so of a folder, in order of their names; those that
    /// were met before are passed over. A folder that does not exist holds none.
    ///
    /// Of two plug-ins of one name the first is loaded, of two services of one
    /// contract and id the first is offered; the other is refused.
    void LoadFolder(const QString& folder);

    /// In the order in which they were met.
    const std::vector<PluginRefusal>& Refusals() const { return m_refusals; }

    /// In the order of loading; of one plug-in, its preferred ones first.
    std::vector<PluginService> Services() const;

    /// Those of one contract, by its class.
    template <typename Contract>
    std::vector<PluginService> ServicesOf() const
    {
        std::vector<PluginService> services;
        for (const PluginService& service : Services())
            if (service.contract == QLatin1String(Contract::staticMetaObject.className()))
                services.push_back(service);
        return services;
    }

    /// A new object of the contract's class.
    /// \throws FactoryException nobody offers it, or what the plug-in made is of
    ///                          another class, or it threw what is no Exception;
    ///                          or the Exception that it threw
    template <typename Contract>
    std::unique_ptr<Contract> CreateService(const QString& id) const
    {
        const QString contract = QLatin1String(Contract::staticMetaObject.className());
        std::unique_ptr<QObject> object = Create(contract, id);
        if (Contract* const service = qobject_cast<Contract*>(object.get())) {
            object.release();
            return std::unique_ptr<Contract>(service);
        }
        RejectClass(contract, id, object.get());
    }

    /// The same for those who can do without: null where that can't be made. The
    /// application's log is told why, once.
    template <typename Contract>
    std::unique_ptr<Contract> TryToCreateService(const QString& id) const
    {
        try {
            return CreateService<Contract>(id);
        } catch (const Exception& exception) {
            WarnOnce(exception.GetErrorText());
            return nullptr;
        }
    }

private:
    struct Offer {
        PluginService service;
        IPlugin* plugin;
    };
    struct Loaded {
        QString name;
        QString file;
    };

    void LoadFile(const QString& file);
    void AddService(const Offer& offer, const QString& file);
    const Offer* Find(const QString& contract, const QString& id) const;
    std::unique_ptr<QObject> Create(const QString& contract, const QString& id) const;
    void WarnOnce(const QString& strText) const;
    [[noreturn]] void RejectClass(const QString& contract, const QString& id, const QObject* object) const;

    IApplicationContext& m_context;
    QSet<QString> m_met; ///< Canonical paths.
    std::vector<Loaded> m_loaded;
    std::vector<Offer> m_offers;
    std::vector<PluginRefusal> m_refusals;
    mutable QSet<QString> m_warned;
};

} // namespace Host
