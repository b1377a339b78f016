#include "reference/host/document/Snapshots.h"

#include "lumenta/foundation/Exceptions.h"
#include "reference/host/document/Scene.h"

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
    auto* const pSnapshot = new Snapshot(strName, m_scene.KeepState());
    m_snapshots.push_back(pSnapshot);
    m_scene.Announce({});
    Q_EMIT insertSnapshot(pSnapshot, static_cast<int>(m_snapshots.size()) - 1);
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
    m_scene.Announce({});
    Q_EMIT renameSnapshot(pOwn, strName);
}

void SnapshotManager::Move(const ISnapshot* pSnapshot, int nPosition)
{
    const auto found = Find(pSnapshot, "ISnapshotManager::Move");
    ISnapshot* const pOwn = *found;
    const auto held = [&](std::size_t nCount) { return std::clamp(nPosition, 0, static_cast<int>(nCount)); };
    if (held(m_snapshots.size() - 1) == found - m_snapshots.begin()) return;
    m_snapshots.erase(found);
    m_scene.Announce({});
    Q_EMIT removeSnapshot(pOwn);
    const int nHeld = held(m_snapshots.size()); // slots may have removed others
    m_snapshots.insert(m_snapshots.begin() + nHeld, pOwn);
    Q_EMIT insertSnapshot(pOwn, nHeld);
}

void SnapshotManager::Remove(const ISnapshot* pSnapshot)
{
    const auto found = Find(pSnapshot, "ISnapshotManager::Remove");
    ISnapshot* const pOwn = *found;
    m_snapshots.erase(found);
    m_scene.KeepUntilLater(std::unique_ptr<QObject>(pOwn));
    m_scene.Announce({});
    Q_EMIT removeSnapshot(pOwn);
}

} // namespace Host
