#pragma once

#include "lumenta/interfaces/SignalArguments.h"

#include <QObject>
#include <QPointer>

#include <algorithm>
#include <array>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace Host {

class Node;
class Scene;

/// From now on so many more are appended without needing memory.
template <typename T>
void ReserveMore(std::vector<T>& list, std::size_t nMore)
{
    if (list.capacity() - list.size() < nMore) list.reserve(std::max(list.size() + nMore, 2 * list.capacity()));
}

/// Brackets the changes of a scene: emits `beforeSceneUpdate` before the first
/// one and `afterSceneUpdate` after the last, and gathers what the latter tells.
/// What has been told of as begun is told of as ended, whatever is thrown between.
///
/// It also keeps what was removed alive: until the batch is over, and then until
/// control returns to the event loop, or the scene ends. Where there is no memory
/// for that, until a later batch is over.
class Batch {
public:
    explicit Batch(Scene& scene);

    /// What IScene::BeginUpdate() and EndUpdate() do.
    void Begin(const sSceneModifications& planned);
    void End();
    bool IsOpen() const { return m_nDepth > 0; }

    /// So many can be kept now without needing memory.
    void MakeRoom(std::size_t nRemoved) { ReserveMore(m_kept, nRemoved); }
    void Keep(std::unique_ptr<QObject> removed);

    /// Whether the node came within this batch.
    bool IsNew(const INode* pNode) const { return m_added.seen.count(pNode) > 0; }

    /// The scene ends: from now on nothing is told.
    void Silence() { m_bSilent = true; }

private:
    friend class Bracket;
    friend class Change;
    friend class Notes;

    /// Each node once.
    struct NodeList {
        std::vector<const INode*> nodes;
        std::unordered_set<const INode*> seen;

        void Add(const INode* pNode);
        /// Without those that came last.
        void CutTo(std::size_t nCount) noexcept;
        /// Those that are in the scene, or all, without needing memory; leaves nothing.
        std::vector<const INode*> Take(bool bAliveOnly) noexcept;
    };

    void Enter(const sSceneModifications& planned);
    void Leave() noexcept;
    void Announce();
    void TellEnd() noexcept;
    void Bury() noexcept;

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
/// of its own accord. A slot may end the scene meanwhile.
class Bracket {
public:
    Bracket(Batch& batch, const sSceneModifications& planned);
    ~Bracket();
    Bracket(const Bracket&) = delete;
    Bracket& operator=(const Bracket&) = delete;

    /// Whether the scene is still there.
    bool IsAlive() const { return !m_pScene.isNull(); }

protected:
    Batch& m_batch;
    const QPointer<QObject> m_pScene;
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
    /// \throws LogicException a slot has ended the scene
    explicit Change(Batch& batch, const sSceneModifications& planned = {});
    ~Change();

    // Where there is no memory for a note, it is not taken and std::bad_alloc thrown.

    void Added(const INode& node) { m_batch.m_added.Add(&node); }
    void Removed(const INode& node) { m_batch.m_removed.Add(&node); }
    void Moved(const INode& node) { m_batch.m_moved.Add(&node); }
    void Changed(const INode& node, eNodeChangedFlags what);
    void Materials() { m_batch.m_bMaterials = true; }
    void InScene(eSceneChangedFlags what) { m_inScene = m_inScene | what; }
    void Selection() { m_bSelection = true; }

private:
    friend class Notes;

    const int m_nThrown;                 ///< Exceptions on their way when it began.
    std::vector<const INode*> m_changed; ///< Each once.
    std::unordered_map<const INode*, eNodeChangedFlags> m_what;
    eSceneChangedFlags m_inScene{};
    bool m_bSelection = false;
};

/// Operations first get all the memory that they need, for their notes, too, and
/// then change the scene without being able to fail. This takes the notes back if
/// it does not come to that.
class Notes {
public:
    explicit Notes(Change& change);
    ~Notes();
    Notes(const Notes&) = delete;
    Notes& operator=(const Notes&) = delete;

    /// From here on they hold.
    void Hold() noexcept { m_bHold = true; }

private:
    using Lists = std::array<Batch::NodeList*, 4>;
    Lists ListsOf() const;

    Change& m_change;
    std::array<std::size_t, 4> m_nNoted{};
    const std::size_t m_nChanged;
    bool m_bHold = false;
};

} // namespace Host
