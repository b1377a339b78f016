#include "reference/host/document/Snapshots.h"

#include "lumenta/foundation/Exceptions.h"
#include "reference/host/Caught.h"
#include "reference/host/document/Scene.h"

#include <QPointer>

#include <algorithm>
#include <utility>

namespace Host {

Snapshot::Snapshot(const QString& strName, SceneState state)
    : m_strName(strName)
    , m_time(QDateTime::currentDateTimeUtc())
    , m_state(std::move(state))
{
}

SnapshotManager::SnapshotManager(Scene& scene)
    : m_scene(scene)
{
}

SnapshotManager::~SnapshotManager()
{
    for (ISnapshot* pSnapshot : m_snapshots)
        delete pSnapshot;
}

template <typename F>
void SnapshotManager::TellChange(const char* strSignal, const F& emitSignal)
{
    const QPointer<SnapshotManager> self = this; // slots may end the scene
    Tell(strSignal, emitSignal);
    if (self) m_scene.Announce({});
}

std::vector<ISnapshot*>::iterator SnapshotManager::Find(const ISnapshot* pSnapshot, const char* method)
{
    const auto found = std::find(m_snapshots.begin(), m_snapshots.end(), pSnapshot);
    if (!pSnapshot || found == m_snapshots.end())
        throw InvalidParameterException(QLatin1String(method), QStringLiteral("pSnapshot"),
                                        QStringLiteral("It is none of this scene's snapshots"));
    return found;
}

const ISnapshot* SnapshotManager::Take(const QString& strName)
{
    auto snapshot = std::make_unique<Snapshot>(strName, m_scene.KeepState());
    m_snapshots.push_back(snapshot.get());
    Snapshot* const pSnapshot = snapshot.release();
    const int nPosition = static_cast<int>(m_snapshots.size()) - 1;
    TellChange("insertSnapshot", [&] { Q_EMIT insertSnapshot(pSnapshot, nPosition); });
    return pSnapshot;
}

void SnapshotManager::Restore(const ISnapshot* pSnapshot)
{
    const auto* const pOwn = static_cast<const Snapshot*>(*Find(pSnapshot, "ISnapshotManager::Restore"));
    const SceneState state = pOwn->m_state; // slots may remove the snapshot
    m_scene.RestoreState(state, pOwn->m_strName);
}

void SnapshotManager::Rename(const ISnapshot* pSnapshot, const QString& strName)
{
    auto* const pOwn = static_cast<Snapshot*>(*Find(pSnapshot, "ISnapshotManager::Rename"));
    if (pOwn->m_strName == strName) return;
    pOwn->m_strName = strName;
    TellChange("renameSnapshot", [&] { Q_EMIT renameSnapshot(pOwn, strName); });
}

void SnapshotManager::Move(const ISnapshot* pSnapshot, int nPosition)
{
    const auto found = Find(pSnapshot, "ISnapshotManager::Move");
    ISnapshot* const pOwn = *found;
    const auto place = m_snapshots.begin() + std::clamp(nPosition, 0, static_cast<int>(m_snapshots.size()) - 1);
    if (place == found) return;
    if (place < found)
        std::rotate(place, found, found + 1);
    else
        std::rotate(found, found + 1, place + 1);
    const QPointer<SnapshotManager> self = this;
    Tell("removeSnapshot", [&] { Q_EMIT removeSnapshot(pOwn); });
    if (!self) return;
    TellChange("insertSnapshot", [&] {
        const auto now = std::find(m_snapshots.begin(), m_snapshots.end(), pOwn); // slots may have removed some
        if (now != m_snapshots.end()) Q_EMIT insertSnapshot(pOwn, static_cast<int>(now - m_snapshots.begin()));
    });
}

void SnapshotManager::Remove(const ISnapshot* pSnapshot)
{
    const auto found = Find(pSnapshot, "ISnapshotManager::Remove");
    ISnapshot* const pOwn = *found;
    m_scene.PrepareToKeep();
    m_snapshots.erase(found);
    m_scene.KeepUntilLater(std::unique_ptr<QObject>(pOwn));
    TellChange("removeSnapshot", [&] { Q_EMIT removeSnapshot(pOwn); });
}

} // namespace Host
