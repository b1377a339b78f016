#include "lumenta/serializers/SceneSerializers.h"

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/ISceneLoader.h"
#include "lumenta/interfaces/ISceneSaver.h"
#include "lumenta/platform/ISerializersRegistry.h"

#include <QFileInfo>

#include <memory>
#include <optional>

namespace {

std::optional<SerializerInfo> FirstThatFits(const QList<SerializerInfo>& infos, const QString& fileName)
{
    const QString suffix = QFileInfo(fileName).suffix();
    for (const SerializerInfo& info : infos) {
        if (info.extension.compare(suffix, Qt::CaseInsensitive) == 0) return info;
    }
    return std::nullopt;
}

/// Shares what was just made.
template <typename T>
QSharedPointer<T> Shared(T* made)
{
    std::unique_ptr<T> owner(made); // where there is no memory for the count, Qt leaves the object behind
    const QSharedPointer<T> shared(owner.get());
    static_cast<void>(owner.release());
    return shared;
}

} // namespace

QSharedPointer<ISceneLoader> CreateSceneLoader(const ISerializersRegistry* registry, const QString& fileName)
{
    const auto info = FirstThatFits(registry->GetLoaders(), fileName);
    if (!info)
        throw LoadingException(
            QStringLiteral("Can't find scene loader for file '%1'").arg(QFileInfo(fileName).fileName()));
    return Shared(registry->CreateLoader(info->id));
}

bool CanLoadScene(const ISerializersRegistry* registry, const QString& fileName)
{
    return FirstThatFits(registry->GetLoaders(), fileName).has_value();
}

QSharedPointer<ISceneSaver> CreateSceneSaver(const ISerializersRegistry* registry, const QString& fileName)
{
    const auto info = FirstThatFits(registry->GetSavers(), fileName);
    if (!info)
        throw LoadingException(
            QStringLiteral("Can't find scene saver for file '%1'").arg(QFileInfo(fileName).fileName()));
    return Shared(registry->CreateSaver(info->id));
}

bool CanSaveScene(const ISerializersRegistry* registry, const QString& fileName)
{
    return FirstThatFits(registry->GetSavers(), fileName).has_value();
}
