// A plug-in in many states of health, by definitions of the compiler.

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IExporter.h"
#include "lumenta/interfaces/IPlugin.h"

#include <QVariant>

#ifndef TEST_BASE
#define TEST_BASE IPlugin
#endif
#ifndef TEST_IID
#define TEST_IID LUMENTA_PLUGIN_IID
#endif
#ifndef TEST_METADATA
#define TEST_METADATA "plugin.json"
#endif
#ifndef TEST_OWN_ID
#define TEST_OWN_ID "wrong"
#endif

void NobodyHasThis();

class TestExporter final : public IExporter {
    Q_OBJECT
};

class TestPlugin : public TEST_BASE {
    Q_OBJECT
#ifndef TEST_WITHOUT_METADATA
    Q_PLUGIN_METADATA(IID TEST_IID FILE TEST_METADATA)
#endif

public:
    TestPlugin()
    {
#ifdef TEST_CALLS_NOBODY
        NobodyHasThis();
#endif
#ifdef TEST_THROWS_IN_CONSTRUCTOR
        throw LogicException(QStringLiteral("no licence"));
#endif
    }

    // Not marked as overriding: the base may be another.
    virtual QList<sServiceInfo> GetServices() const
    {
#ifdef TEST_THROWS_IN_SERVICES
        throw 5;
#endif
        return {{QStringLiteral("IExporter"), QStringLiteral("paper"), QStringLiteral("Paper")},
                {QStringLiteral("IExporter"), QStringLiteral(TEST_OWN_ID), QStringLiteral("Another")}};
    }

    /// Only "wrong" is made, as something that is no exporter.
    virtual QObject* CreateService(const QString&, const QString& strId, IApplicationContext& context)
    {
        QObject* const object = strId == QLatin1String("wrong") ? new QObject : new TestExporter;
        object->setProperty("context", QVariant::fromValue(static_cast<void*>(&context)));
        return object;
    }
};

#include "TestPlugin.moc"
