#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IPlugin.h"
#include "reference/plugins/primitives/ShapeGenerator.h"

namespace Host {

namespace {

struct Offer {
    const char* id;
    Shape (*shape)();
};

constexpr Offer kOffers[] = {{"box", BoxShape}, {"sphere", SphereShape}, {"bottle", BottleShape}};

} // namespace

class PrimitivesPlugin final : public IPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID LUMENTA_PLUGIN_IID FILE "plugin.json")

public:
    QList<sServiceInfo> GetServices() const override
    {
        QList<sServiceInfo> services;
        for (const Offer& offer : kOffers)
            services.append({QStringLiteral("IGenerator"), QLatin1String(offer.id), offer.shape().title});
        return services;
    }

    QObject* CreateService(const QString& strContract, const QString& strId, IApplicationContext&) override
    {
        for (const Offer& offer : kOffers)
            if (strContract == QLatin1String("IGenerator") && strId == QLatin1String(offer.id))
                return new ShapeGenerator(offer.shape());
        throw FactoryException(QStringLiteral("%1 '%2'").arg(strContract, strId));
    }
};

} // namespace Host

#include "PrimitivesPlugin.moc"
