#pragma once

#include "lumenta/Export.h"

#include <QList>
#include <QObject>
#include <QString>

class IApplicationContext;

/// The version of the contracts in these headers, major.minor. A plug-in names
/// the one that it was built against in its metadata, and the host refuses
/// another one before it loads the plug-in's code.
#define LUMENTA_CONTRACT_VERSION "0.1"

/// The interface identifier of the metadata (Q_PLUGIN_METADATA).
#define LUMENTA_PLUGIN_IID "com.quillwright.lumenta.IPlugin"

/// Something that a plug-in can make.
struct sServiceInfo {
    QString strContract; ///< Class name: "IModelLoader", "IRender", ...
    QString strId;       ///< Unique among the plug-in's services of this contract.
    QString strTitle;    ///< Shown to people.
    /// Of a scene loader or saver: what it handles, without the dot. No other
    /// contract needs it.
    QString strExtension = {};
};

/// The root object of a plug-in.
///
/// **Who implements it:** a plug-in, once, with
/// `Q_PLUGIN_METADATA(IID LUMENTA_PLUGIN_IID FILE "….json")`. The metadata hold
/// "name", "version" and "contract", the LUMENTA_CONTRACT_VERSION.
/// **Who calls it:** the host, after loading: GetServices() once, CreateService()
/// whenever one is needed.
/// **Thread:** the application's. **Ownership:** Qt owns the root object; it
/// lives until the plug-in is unloaded, after everything that it made.
class LUMENTA_EXPORT IPlugin : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~IPlugin() override;

    /// The same all its life, the preferred ones first.
    virtual QList<sServiceInfo> GetServices() const = 0;

    /// A new object that implements the contract and answers to
    /// `qobject_cast` by its class. The caller owns it.
    /// \param context the services of the host; outlives the object
    /// \throws FactoryException the plug-in has no such service
    virtual QObject* CreateService(const QString& strContract, const QString& strId, IApplicationContext& context) = 0;
};
