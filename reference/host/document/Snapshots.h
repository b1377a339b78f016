#pragma once

#include "lumenta/foundation/Matrix.h"
#include "lumenta/interfaces/IFreeCamera.h"
#include "lumenta/interfaces/ISnapshot.h"
#include "lumenta/interfaces/ISnapshotManager.h"

#include <memory>

namespace Host {

class Scene;

/// What a snapshot keeps. Nodes are named by their number.
struct SceneState {
    struct Node {
        int nId;
        Matrix matrix;
        bool bVisible;
    };
    std::vector<Node> nodes;
    sCameraState camera;
    int nModelNode = 0;  ///< The group whose model plays, or 0 while all are at rest.
    int nAnimation = -1; ///< Of that model.
    float time = 0.0f;
};

class Snapshot final : public ISnapshot {
    Q_OBJECT

public:
    Snapshot(const QString& strName, SceneState state);

    QString GetName() const override { return m_strName; }
    QDateTime GetTime() const override { return m_time; }

private:
    friend class SnapshotManager;

    QString m_strName;
    const QDateTime m_time;
    const SceneState m_state;
};

/// A model that was removed since plays no more. Changes of the list count as
/// something to save.
class SnapshotManager final : public ISnapshotManager {
    Q_OBJECT

public:
    explicit SnapshotManager(Scene& scene);
    ~SnapshotManager() override;

    const std::vector<ISnapshot*>& GetSnapshots() const override { return m_snapshots; }
    const ISnapshot* Take(const QString& strName) override;
    void Restore(const ISnapshot* pSnapshot) override;
    void Rename(const ISnapshot* pSnapshot, const QString& strName) override;
    /// Emits nothing where it has that place already.
    void Move(const ISnapshot* pSnapshot, int nPosition) override;
    void Remove(const ISnapshot* pSnapshot) override;

private:
    /// emitSignal(), and then that there is something to save.
    template <typename F>
    void TellChange(const char* strSignal, const F& emitSignal);
    std::vector<ISnapshot*>::iterator Find(const ISnapshot* pSnapshot, const char* method);

    Scene& m_scene;
    std::vector<ISnapshot*> m_snapshots; ///< Owned.
};

} // namespace Host
