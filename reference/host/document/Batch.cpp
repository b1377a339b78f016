#include "reference/host/document/Batch.h"

#include "lumenta/foundation/Exceptions.h"
#include "reference/host/document/Scene.h"

#include <algorithm>
#include <iterator>

namespace Host {

namespace {

/// Ends what it holds one by one, so that no depth of tree matters.
class Grave final : public QObject {
public:
    using QObject::QObject;
    std::vector<std::unique_ptr<QObject>> removed;
};

} // namespace

Batch::Batch(Scene& scene)
    : m_scene(scene)
{
}

void Batch::NodeList::Add(const INode* pNode)
{
    if (seen.insert(pNode).second) nodes.push_back(pNode);
}

std::vector<const INode*> Batch::NodeList::Alive() const
{
    std::vector<const INode*> alive;
    std::copy_if(nodes.begin(), nodes.end(), std::back_inserter(alive),
                 [](const INode* pNode) { return pNode->GetScene() != nullptr; });
    return alive;
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
    if (m_nDepth++ == 0) m_planned = planned;
}

void Batch::Announce()
{
    if (m_bAnnounced || m_bSilent) return;
    m_bAnnounced = true;
    const sSceneModifications planned = m_planned;
    Q_EMIT m_scene.beforeSceneUpdate(planned);
}

void Batch::Leave()
{
    if (--m_nDepth > 0 || m_bSilent) return;
    if (m_bAnnounced) TellEnd();
    Bury();
}

void Batch::TellEnd()
{
    const sSceneModifications done{m_planned.strTitle, m_added.Alive(),   m_removed.nodes,
                                   m_moved.Alive(),    m_changed.Alive(), m_bMaterials};
    for (NodeList* pList : {&m_added, &m_removed, &m_moved, &m_changed})
        *pList = {};
    m_bMaterials = false;
    m_bAnnounced = false;
    Q_EMIT m_scene.afterSceneUpdate(done);
}

/// One grave at a time: Qt looks for the pending end of each object among all others'.
void Batch::Bury()
{
    if (m_kept.empty()) return;
    if (!m_pGrave) {
        m_pGrave = new Grave(&m_scene);
        m_pGrave->deleteLater();
    }
    auto& removed = static_cast<Grave*>(m_pGrave.data())->removed;
    std::move(m_kept.begin(), m_kept.end(), std::back_inserter(removed));
    m_kept.clear();
}

Bracket::Bracket(Batch& batch, const sSceneModifications& planned)
    : m_batch(batch)
{
    m_batch.Enter(planned);
}

Change::Change(Batch& batch, const sSceneModifications& planned)
    : Bracket(batch, planned)
{
    m_batch.Announce();
}

Change::~Change()
{
    if (m_batch.m_bSilent) return;
    Scene& scene = m_batch.m_scene;
    for (const INode* pNode : m_changed)
        if (pNode->GetScene()) Q_EMIT scene.nodeChanged(pNode, m_what[pNode]);
    scene.Announce(m_inScene);
    if (m_bSelection) Q_EMIT scene.selectionChanged();
}

void Change::Changed(const INode& node, eNodeChangedFlags what)
{
    const auto [known, isNew] = m_what.emplace(&node, what);
    if (isNew)
        m_changed.push_back(&node);
    else
        known->second = known->second | what;
    m_batch.m_changed.Add(&node);
}

} // namespace Host
