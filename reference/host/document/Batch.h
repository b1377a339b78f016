#pragma once

#include "lumenta/interfaces/SignalArguments.h"

#include <QObject>
#include <QPointer>

#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace Host {

class Node;
class Scene;

/// Brackets the changes of a scene: emits `beforeSceneUpdate` before the first
/// one and `afterSceneUpdate` after the last, and gathers what the latter tells.
///
/// It also keeps what was removed alive: until the batch is over, and then until
/// control returns to the event loop, or the scene ends.
class Batch {
public:
    explicit Batch(Scene& scene);

    /// What IScene::BeginUpdate() and EndUpdate() do.
    void Begin(const sSceneModifications& planned);
    void End();
    bool IsOpen() const { return m_nDepth > 0; }

    void Keep(std::unique_ptr<QObject> removed);

    /// Whether the node came within this batch.
    bool IsNew(const INode* pNode) const { return m_added.seen.count(pNode) > 0; }

    /// The scene ends: from now on nothing is told.
    void Silence() { m_bSilent = true; }

private:
    friend class Bracket;
    friend class Change;

    /// Each node once.
    struct NodeList {
        std::vector<const INode*> nodes;
        std::unordered_set<const INode*> seen;

        void Add(const INode* pNode);
        /// Without those that are no longer in the scene.
        std::vector<const INode*> Alive() const;
    };

    void Enter(const sSceneModifications& planned);
    void Leave();
    void Announce();
    void TellEnd();
    void Bury();

    Scene& m_scene;
    int m_nDepth = 0;    ///< Of callers' brackets and running operations.
    int m_nExplicit = 0; ///< Of callers' brackets.
    bool m_bAnnounced = false;
    bool m_bSilent = false;
    bool m_bMaterials = false;
    sSceneModifications m_planned;
    NodeList m_added, m_removed, m_moved, m_changed;
    std::vector<std::unique_ptr<QObject>> m_kept;
    QPointer<QObject> m_pGrave;
};

/// Makes one batch of several operations, as long as it lives. Tells nothing
/// of its own accord.
class Bracket {
public:
    Bracket(Batch& batch, const sSceneModifications& planned);
    ~Bracket() { m_batch.Leave(); }
    Bracket(const Bracket&) = delete;
    Bracket& operator=(const Bracket&) = delete;

protected:
    Batch& m_batch;
};

/// One operation that is sure to change something. First `beforeSceneUpdate`
/// goes out, if the batch begins here; then the operation changes what it has
/// to and notes it; at the end the notes go out as signals. So whoever hears of
/// a change sees the whole of it.
///
/// Slots may have changed the scene by the time that the constructor returns:
/// look again.
class Change : public Bracket {
public:
    explicit Change(Batch& batch, const sSceneModifications& planned = {});
    ~Change();

    void Added(const INode& node) { m_batch.m_added.Add(&node); }
    void Removed(const INode& node) { m_batch.m_removed.Add(&node); }
    void Moved(const INode& node) { m_batch.m_moved.Add(&node); }
    void Changed(const INode& node, eNodeChangedFlags what);
    void Materials() { m_batch.m_bMaterials = true; }
    void InScene(eSceneChangedFlags what) { m_inScene = m_inScene | what; }
    void Selection() { m_bSelection = true; }

private:
    std::vector<const INode*> m_changed; ///< Each once.
    std::unordered_map<const INode*, eNodeChangedFlags> m_what;
    eSceneChangedFlags m_inScene{};
    bool m_bSelection = false;
};

} // namespace Host
