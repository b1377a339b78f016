#include "lumenta/scene/AddMesh.h"

#include "lumenta/interfaces/INode.h"
#include "lumenta/interfaces/IScene.h"

#include <QStringList>
#include <QVariant>

namespace {

constexpr char kLight[] = "node.light";

void AddNumberedMesh(IScene& scene, INode& root, const QString& source, const QString& baseName)
{
    static constexpr char kCounter[] = "object-creator-next-index";
    // Unsigned, because a stored counter may hold any number, the largest one, too.
    const int number = static_cast<int>(static_cast<unsigned int>(scene.property(kCounter).toInt()) + 1u);
    root.CreateMesh(baseName.trimmed() + QLatin1Char('_') + QString::number(number), source.trimmed());
    scene.setProperty(kCounter, number);
}

} // namespace

void addMeshToRoot(IScene* pScene, const QString& strObject)
{
    const QStringList fields = strObject.split(QLatin1Char(','), Qt::KeepEmptyParts, Qt::CaseSensitive);
    if (fields.size() != 2)
        return;

    INode& root = *pScene->GetRoot();
    if (fields.at(0) == QLatin1String("node.group"))
        root.CreateGroup(QStringLiteral("Group"));
    else if (fields.at(0) == QLatin1String(kLight))
        root.CreateLight(QStringLiteral("Light"));
    else
        AddNumberedMesh(*pScene, root, fields.at(0), fields.at(1));
}

bool tryAddMeshToRoot(IScene* pScene, const QString& strObject)
{
    if (!strObject.contains(QLatin1String(kLight)))
        return false;
    addMeshToRoot(pScene, strObject);
    return true;
}
