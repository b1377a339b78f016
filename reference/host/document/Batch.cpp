#include "reference/host/document/Batch.h"

#include "lumenta/foundation/Exceptions.h"
#include "reference/host/Caught.h"
#include "reference/host/document/Scene.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <new>
#include <utility>

namespace Host {

namespace {

/// Ends what it holds one by one, so that no depth of tree matters.
class Grave final : public QObject {
public:
    using QObject::QObject;
    ~Grave() override { setParent(nullptr); } // whoever hears of an end may end the scene
    std::vector<std::unique_ptr<QObject>> removed;
};

} // namespace

Batch::Batch(Scene& scene)
    : m_scene(scene)
{
}

void Batch::NodeList::Add(const INode* pNode)
{
    if (!seen.insert(pNode).second) return;
    try {
        nodes.push_back(pNode);
    } catch (...) {
        seen.erase(pNode);
        throw;
    }
}

void Batch::NodeList::CutTo(std::size_t nCount) noexcept
{
    for (; nodes.size() > nCount; nodes.pop_back())
        seen.erase(nodes.back());
}

std::vector<const INode*> Batch::NodeList::Take(bool bAliveOnly) noexcept
{
    std::vector<const INode*> taken = std::move(nodes);
    nodes.clear();
    seen.clear();
    if (bAliveOnly)
        taken.erase(std::remove_if(taken.begin(), taken.end(), [](const INode* pNode) { return !pNode->GetScene(); }),
                    taken.end());
    return taken;
}

void Batch::Begin(const sSceneModifications& planned)
{
    Enter(planned);
    ++m_nExplicit;
}

void Batch::End()
{
    if (m_nExplicit == 0) throw LogicException(QStringLiteral("IScene::EndUpdate() without IScene::BeginUpdate()"));
    --m_nExplicit;
    Leave();
}

void Batch::Keep(std::unique_ptr<QObject> removed)
{
    m_kept.push_back(std::move(removed));
    if (!IsOpen()) Bury();
}

void Batch::Enter(const sSceneModifications& planned)
{
    if (m_nDepth == 0) m_planned = planned;
    ++m_nDepth;
}

void Batch::Announce()
{
    if (m_bAnnounced || m_bSilent) return;
    const sSceneModifications planned = m_planned;
    m_bAnnounced = true;
    Tell("beforeSceneUpdate", [&] { Q_EMIT m_scene.beforeSceneUpdate(planned); });
}

void Batch::Leave() noexcept
{
    if (--m_nDepth > 0 || m_bSilent) return;
    const QPointer<QObject> pScene = &m_scene;
    if (m_bAnnounced) TellEnd();
    if (pScene) Bury();
}

void Batch::TellEnd() noexcept
{
    const sSceneModifications done{m_planned.strTitle, m_added.Take(true),   m_removed.Take(false),
                                   m_moved.Take(true), m_changed.Take(true), std::exchange(m_bMaterials, false)};
    m_bAnnounced = false;
    Tell("afterSceneUpdate", [&] { Q_EMIT m_scene.afterSceneUpdate(done); });
}

/// One grave at a time: Qt looks for the pending end of each object among all others'.
void Batch::Bury() noexcept
{
    if (m_kept.empty()) return;
    try {
        if (!m_pGrave) {
            auto grave = std::make_unique<Grave>(&m_scene);
            grave->deleteLater();
            m_pGrave = grave.get();
            static_cast<void>(grave.release());
        }
        auto& removed = static_cast<Grave*>(m_pGrave.data())->removed;
        removed.insert(removed.end(), std::make_move_iterator(m_kept.begin()), std::make_move_iterator(m_kept.end()));
        m_kept.clear();
    } catch (const std::bad_alloc&) {
        // They stay until another time.
    }
}

Bracket::Bracket(Batch& batch, const sSceneModifications& planned)
    : m_batch(batch)
    , m_pScene(&batch.m_scene)
{
    m_batch.Enter(planned);
}

Bracket::~Bracket()
{
    if (m_pScene) m_batch.Leave();
}

Change::Change(Batch& batch, const sSceneModifications& planned)
    : Bracket(batch, planned)
    , m_nThrown(std::uncaught_exceptions())
{
    m_batch.Announce();
    if (!IsAlive()) throw LogicException(QStringLiteral("A receiver of 'beforeSceneUpdate' has deleted the scene"));
}

Change::~Change()
{
    if (!IsAlive() || m_batch.m_bSilent) return;
    Scene& scene = m_batch.m_scene;
    for (const INode* pNode : m_changed) {
        if (!IsAlive()) return;
        if (pNode->GetScene())
            Tell("nodeChanged", [&] { Q_EMIT scene.nodeChanged(pNode, m_what.find(pNode)->second); });
    }
    const bool hasFailed = std::uncaught_exceptions() > m_nThrown;
    const bool isNothing = hasFailed && m_changed.empty() && m_inScene == eSceneChangedFlags{};
    if (IsAlive() && !isNothing) scene.Announce(m_inScene);
    if (IsAlive() && m_bSelection) Tell("selectionChanged", [&] { Q_EMIT scene.selectionChanged(); });
}

void Change::Changed(const INode& node, eNodeChangedFlags what)
{
    ReserveMore(m_changed, 1);
    const std::size_t nNoted = m_batch.m_changed.nodes.size();
    m_batch.m_changed.Add(&node);
    try {
        const auto [known, isNew] = m_what.emplace(&node, what);
        if (isNew)
            m_changed.push_back(&node);
        else
            known->second = known->second | what;
    } catch (...) {
        m_batch.m_changed.CutTo(nNoted);
        throw;
    }
}

Notes::Notes(Change& change)
    : m_change(change)
    , m_nChanged(change.m_changed.size())
{
    const Lists lists = ListsOf();
    std::transform(lists.begin(), lists.end(), m_nNoted.begin(),
                   [](const Batch::NodeList* pList) { return pList->nodes.size(); });
}

Notes::~Notes()
{
    if (m_bHold) return;
    const Lists lists = ListsOf();
    for (std::size_t i = 0; i < lists.size(); ++i)
        lists[i]->CutTo(m_nNoted[i]);
    for (; m_change.m_changed.size() > m_nChanged; m_change.m_changed.pop_back())
        m_change.m_what.erase(m_change.m_changed.back());
}

Notes::Lists Notes::ListsOf() const
{
    Batch& batch = m_change.m_batch;
    return {&batch.m_added, &batch.m_removed, &batch.m_moved, &batch.m_changed};
}

} // namespace Host
