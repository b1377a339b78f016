#include "TrianglePlugin.h"

#include "TriangleLoader.h"

#include "lumenta/foundation/Exceptions.h"

QList<sServiceInfo> TrianglePlugin::GetServices() const
{
    return {{QStringLiteral("IModelLoader"), QStringLiteral("triangles"), QStringLiteral("Triangles")}};
}

QObject* TrianglePlugin::CreateService(const QString& strContract, const QString& strId, IApplicationContext&)
{
    if (strContract == QLatin1String("IModelLoader") && strId == QLatin1String("triangles"))
        return new TriangleLoader;
    throw FactoryException(strContract);
}
