// What a scene does with its tree of nodes.

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/scene/BoundingBoxes.h"
#include "lumenta/scene/NodeHierarchy.h"
#include "reference/host/Caught.h"
#include "reference/host/document/Newcomers.h"
#include "reference/host/document/Node.h"
#include "reference/host/document/Placement.h"
#include "reference/host/document/PosedModel.h"
#include "reference/host/document/Scene.h"
#include "reference/host/document/Snapshots.h"
#include "reference/host/images/Image.h"

#include <algorithm>
#include <cmath>
#include <unordered_set>
#include <utility>

namespace Host {

namespace {

constexpr float kRounding = 1e-6f; ///< Of a box's farthest coordinate.

sSceneModifications Planned(const QString& strTitle, std::vector<const INode*> sSceneModifications::*pList = nullptr,
                            const std::vector<Node*>& nodes = {})
{
    sSceneModifications planned;
    planned.strTitle = strTitle;
    if (pList) (planned.*pList).assign(nodes.begin(), nodes.end());
    return planned;
}

QString Title(const char* verb, std::size_t nNodes)
{
    return nNodes == 1 ? QStringLiteral("%1 object").arg(QLatin1String(verb))
                       : QStringLiteral("%1 %2 objects").arg(QLatin1String(verb)).arg(nNodes);
}

bool LiesUnder(const INode* pNode, const std::vector<Node*>& tops)
{
    const std::unordered_set<const INode*> listed(tops.begin(), tops.end());
    for (const INode* pAt = pNode; pAt; pAt = pAt->GetParent())
        if (listed.count(pAt)) return true;
    return false;
}

std::vector<INode*> AsInterfaces(const std::vector<Node*>& nodes)
{
    return {nodes.begin(), nodes.end()};
}

} // namespace

// -------------------------------------------------------------- finding nodes

std::vector<Node*> Scene::AllNodes() const
{
    std::vector<Node*> nodes;
    for (INode* pNode : CollectAllChildren({m_pRoot}))
        nodes.push_back(static_cast<Node*>(pNode));
    return nodes;
}

std::vector<Node*> Scene::InTreeOrder(const std::vector<INode*>& nodes, Listed listed) const
{
    std::unordered_set<INode*> wanted;
    for (INode* pNode : nodes)
        if (pNode && pNode->GetScene() == this && !(listed == eTopsOnly && pNode == m_pRoot)) wanted.insert(pNode);
    if (wanted.empty()) return {};
    if (wanted.size() == 1 && listed != eWithBelow) return {static_cast<Node*>(*wanted.begin())};

    std::vector<Node*> found;
    std::unordered_set<const INode*> passed; // those listed, and all that is under them
    for (Node* pNode : AllNodes()) {
        const bool isBelow = passed.count(pNode->m_pParent) > 0;
        const bool isListed = wanted.count(pNode) > 0;
        if (isBelow || isListed) passed.insert(pNode);
        if (listed == eTopsOnly ? isListed && !isBelow : isListed || (isBelow && listed == eWithBelow))
            found.push_back(pNode);
    }
    return found;
}

Node& Scene::Own(INode* pNode, const char* method) const
{
    if (!pNode || pNode->GetScene() != this)
        throw InvalidParameterException(QLatin1String(method), QStringLiteral("pParent"),
                                        QStringLiteral("It is none of this scene's nodes"));
    return *static_cast<Node*>(pNode);
}

INode* Scene::FindNode(const QString& strName) const
{
    for (Node* pNode : AllNodes())
        if (pNode != m_pRoot && pNode->m_strName == strName) return pNode;
    return nullptr;
}

INode* Scene::GetNodeById(int nId) const
{
    const auto found = m_nodes.find(nId);
    return found == m_nodes.end() ? nullptr : found->second.get();
}

std::vector<INode*> Scene::GetLights() const
{
    std::vector<INode*> lights;
    for (Node* pNode : AllNodes())
        if (pNode->m_nType == eNodeTypeLight) lights.push_back(pNode);
    return lights;
}

// --------------------------------------------------------------- adding nodes

Scene::Newcomers::Newcomers(Scene& scene, Change& change)
    : m_scene(scene)
    , m_change(change)
    , m_notes(change)
{
}

Scene::Newcomers::~Newcomers()
{
    if (m_bHold) return;
    for (const Node* pNode : m_added)
        m_scene.m_nodes.erase(pNode->m_nId);
}

Node& Scene::Newcomers::Add(std::unique_ptr<Node> node, Node& parent)
{
    ReserveMore(m_added, 1);
    m_change.Added(*node);
    Node& added = *(m_scene.m_nodes[node->m_nId] = std::move(node));
    added.m_pParent = &parent;
    added.m_pScene = &m_scene;
    m_added.push_back(&added);
    return added;
}

void Scene::Newcomers::Hold() noexcept
{
    m_bHold = true;
    m_notes.Hold();
    m_change.InScene(eSceneChangedHierarchy);
}

INode* Scene::AddNode(std::unique_ptr<Node> node, Node& parent)
{
    Change change(m_batch, Planned(QStringLiteral("Add '%1'").arg(node->m_strName)));
    parent.SceneOrThrow(); // a slot may have removed it
    Newcomers newcomers(*this, change);
    ReserveMore(parent.m_children, 1);
    parent.m_children.push_back(&newcomers.Add(std::move(node), parent));
    newcomers.Hold();
    return parent.m_children.back();
}

INode* Scene::AddGroup(const QString& strName, Node* pParent)
{
    return AddNode(std::make_unique<Node>(eNodeTypeGroup, ++m_nLastId, strName), *pParent);
}

INode* Scene::AddLight(const QString& strName, Node* pParent)
{
    return AddNode(std::make_unique<LightNode>(++m_nLastId, strName), *pParent);
}

Node& Scene::CopyBranch(Node& top, Newcomers& newcomers)
{
    Node& copiedTop = newcomers.Add(top.Copy(++m_nLastId), *top.m_pParent);
    std::vector<std::pair<const Node*, Node*>> pending{{&top, &copiedTop}};
    while (!pending.empty()) {
        const auto [pSource, pCopy] = pending.back();
        pending.pop_back();
        for (const INode* pChild : pSource->m_children) {
            const auto* const pOwn = static_cast<const Node*>(pChild);
            pCopy->m_children.push_back(&newcomers.Add(pOwn->Copy(++m_nLastId), *pCopy));
            pending.emplace_back(pOwn, static_cast<Node*>(pCopy->m_children.back()));
        }
    }
    return copiedTop;
}

// ------------------------------------------------------------- moving nodes

/// Where nodes are to hang and stand: all of it is prepared and noted, and then
/// put into effect at once. Taken back unless it is to hold.
class Scene::Arrangement {
public:
    explicit Arrangement(Change& change)
        : m_change(change)
        , m_notes(change)
    {
    }
    ~Arrangement()
    {
        if (m_bInEffect && !m_bHold) Swap();
    }
    Arrangement(const Arrangement&) = delete;
    Arrangement& operator=(const Arrangement&) = delete;

    /// New children for every parent of `nodes`: replace(node, children) appends
    /// what comes into the place of a listed node.
    template <typename F>
    void ReplaceInParents(const std::vector<Node*>& nodes, const F& replace)
    {
        std::vector<Node*> parents;
        std::unordered_set<const INode*> known;
        for (const Node* pNode : nodes)
            if (known.insert(pNode->m_pParent).second) parents.push_back(pNode->m_pParent);

        const std::unordered_set<const INode*> listed(nodes.begin(), nodes.end());
        for (Node* pParent : parents) {
            std::vector<INode*> children;
            for (INode* pChild : pParent->m_children) {
                if (listed.count(pChild))
                    replace(*static_cast<Node*>(pChild), children);
                else
                    children.push_back(pChild);
            }
            SetChildren(*pParent, std::move(children));
        }
    }

    /// Each parent once.
    void SetChildren(Node& parent, std::vector<INode*> children) { m_lists.emplace_back(&parent, std::move(children)); }

    void DropChildrenOf(const Node& parent)
    {
        m_lists.erase(
            std::remove_if(m_lists.begin(), m_lists.end(), [&](const auto& list) { return list.first == &parent; }),
            m_lists.end());
    }

    void SetMatrix(Node& node, const Matrix& matrix) { Place(node, node.m_pParent, matrix); }

    void Move(Node& node, Node& parent, const Matrix& matrix)
    {
        m_change.Moved(node);
        Place(node, &parent, matrix);
    }

    /// To where it is in the world already.
    void Reparent(Node& node, Node& parent, const Matrix& parentWorld)
    {
        const Matrix formerWorld = WorldOf(node.m_pParent);
        const bool isSame = formerWorld == parentWorld; // not a bit of rounding without need
        const std::optional<Matrix> local = isSame ? std::nullopt : LocalFor(node.m_matrix * formerWorld, parentWorld);
        Move(node, parent, local ? *local : node.m_matrix);
    }

    void PutIntoEffect() noexcept
    {
        m_bInEffect = true;
        Swap();
    }

    void Hold() noexcept
    {
        m_bHold = true;
        m_notes.Hold();
    }

private:
    struct Placed {
        Node* pNode;
        Node* pParent;
        Matrix matrix;
    };

    void Place(Node& node, Node* pParent, const Matrix& matrix)
    {
        if (node.m_matrix != matrix) m_change.Changed(node, eNodeChangedMatrix);
        m_places.push_back({&node, pParent, matrix});
    }

    void Swap() noexcept
    {
        for (auto& [pParent, children] : m_lists)
            pParent->m_children.swap(children);
        for (Placed& place : m_places) {
            std::swap(place.pNode->m_pParent, place.pParent);
            std::swap(place.pNode->m_matrix, place.matrix);
        }
    }

    Change& m_change;
    Notes m_notes;
    std::vector<std::pair<Node*, std::vector<INode*>>> m_lists;
    std::vector<Placed> m_places;
    bool m_bInEffect = false;
    bool m_bHold = false;
};

std::vector<INode*> Scene::ChildrenAfterMove(const Node& parent, const std::vector<Node*>& moving, int nPosition)
{
    const std::unordered_set<const INode*> leaving(moving.begin(), moving.end());
    std::vector<INode*> children;
    std::copy_if(parent.m_children.begin(), parent.m_children.end(), std::back_inserter(children),
                 [&](const INode* pChild) { return leaving.count(pChild) == 0; });
    const bool isWithin = nPosition >= 0 && static_cast<std::size_t>(nPosition) < children.size();
    children.insert(isWithin ? children.begin() + nPosition : children.end(), moving.begin(), moving.end());
    return children;
}

void Scene::MoveNodes(const std::vector<INode*>& nodes, INode* pParent, int nPosition)
{
    Node& parent = Own(pParent, "IScene::MoveNodes");
    std::vector<Node*> moving = InTreeOrder(nodes, eTopsOnly);
    if (LiesUnder(&parent, moving))
        throw InvalidParameterException(QStringLiteral("IScene::MoveNodes"), QStringLiteral("pParent"),
                                        QStringLiteral("It lies under one of the nodes"));
    if (ChildrenAfterMove(parent, moving, nPosition) == parent.m_children) return;

    Change change(m_batch, Planned(Title("Move", moving.size()), &sSceneModifications::moved, moving));
    moving = InTreeOrder(nodes, eTopsOnly);
    if (!parent.m_pScene || LiesUnder(&parent, moving)) return;
    const Matrix parentWorld = WorldOf(&parent);
    Arrangement arrangement(change);
    arrangement.ReplaceInParents(moving, [](Node&, std::vector<INode*>&) {});
    arrangement.DropChildrenOf(parent);
    arrangement.SetChildren(parent, ChildrenAfterMove(parent, moving, nPosition));
    for (Node* pNode : moving)
        arrangement.Reparent(*pNode, parent, parentWorld);
    arrangement.PutIntoEffect();
    FollowTree(change);
    arrangement.Hold();
}

INode* Scene::GroupNodes(const std::vector<INode*>& nodes, const QString& strName)
{
    std::vector<Node*> members = InTreeOrder(nodes, eTopsOnly);
    if (members.empty()) return nullptr;
    Change change(m_batch, Planned(Title("Group", members.size()), &sSceneModifications::moved, members));
    members = InTreeOrder(nodes, eTopsOnly);
    if (members.empty()) return nullptr;

    Node& parent = *members.front()->m_pParent;
    const Matrix parentWorld = WorldOf(&parent);
    Newcomers newcomers(*this, change);
    Node& group = newcomers.Add(std::make_unique<Node>(eNodeTypeGroup, ++m_nLastId, strName), parent);
    group.m_children = AsInterfaces(members);
    Arrangement arrangement(change);
    arrangement.ReplaceInParents(members, [&](const Node& node, std::vector<INode*>& children) {
        if (&node == members.front()) children.push_back(&group);
    });
    for (Node* pNode : members)
        arrangement.Reparent(*pNode, group, parentWorld);
    arrangement.PutIntoEffect();
    FollowTree(change);
    arrangement.Hold();
    newcomers.Hold();
    return &group;
}

void Scene::UngroupNodes(const std::vector<INode*>& nodes)
{
    const auto listedGroups = [&] {
        std::vector<Node*> groups = InTreeOrder(nodes, eEach);
        const auto isNone = [&](const Node* pNode) { return pNode->m_nType != eNodeTypeGroup || pNode == m_pRoot; };
        groups.erase(std::remove_if(groups.begin(), groups.end(), isNone), groups.end());
        return groups;
    };
    std::vector<Node*> groups = listedGroups();
    if (groups.empty()) return;
    Change change(m_batch, Planned(Title("Ungroup", groups.size()), &sSceneModifications::removed, groups));
    groups = listedGroups();
    if (groups.empty()) return;
    Arrangement arrangement(change);
    Dissolve(groups, arrangement);
    const std::vector<INode*> leaving = AsInterfaces(groups);
    PrepareToForget(leaving, change);
    arrangement.PutIntoEffect(); // which changes the order of no others: nothing has to follow
    Forget(leaving, change);
    arrangement.Hold();
}

/// Hands the children of groups, which come in tree order, to the nodes around
/// them. Linear also where groups hang in groups.
void Scene::Dissolve(const std::vector<Node*>& groups, Arrangement& arrangement)
{
    std::unordered_map<const INode*, Matrix> outward; // from within each group to around the outermost one
    std::vector<Node*> outermost;
    for (Node* pGroup : groups) {
        const auto around = outward.find(pGroup->m_pParent);
        if (around == outward.end()) outermost.push_back(pGroup);
        outward[pGroup] = around == outward.end() ? pGroup->m_matrix : pGroup->m_matrix * around->second;
    }
    arrangement.ReplaceInParents(outermost, [&](Node& group, std::vector<INode*>& children) {
        Node* const pParent = group.m_pParent;
        std::vector<INode*> pending{&group};
        while (!pending.empty()) {
            Node& node = *static_cast<Node*>(pending.back());
            pending.pop_back();
            if (outward.count(&node)) {
                pending.insert(pending.end(), node.m_children.rbegin(), node.m_children.rend());
                continue;
            }
            arrangement.Move(node, *pParent, node.m_matrix * outward[node.m_pParent]);
            children.push_back(&node);
        }
    });
}

std::vector<INode*> Scene::DuplicateNodes(const std::vector<INode*>& nodes)
{
    std::vector<Node*> tops = InTreeOrder(nodes, eTopsOnly);
    if (tops.empty()) return {};
    Change change(m_batch, Planned(Title("Duplicate", tops.size())));
    tops = InTreeOrder(nodes, eTopsOnly);
    std::vector<INode*> copies;
    std::unordered_map<const INode*, INode*> copyOf;
    Newcomers newcomers(*this, change);
    for (Node* pTop : tops) {
        copies.push_back(&CopyBranch(*pTop, newcomers));
        copyOf[pTop] = copies.back();
    }
    Arrangement arrangement(change);
    arrangement.ReplaceInParents(tops, [&](Node& node, std::vector<INode*>& children) {
        children.push_back(&node);
        children.push_back(copyOf[&node]);
    });
    arrangement.PutIntoEffect();
    arrangement.Hold();
    newcomers.Hold();
    return copies;
}

void Scene::MoveInWorld(const std::vector<INode*>& nodes, const QString& strTitle,
                        const std::function<std::optional<Matrix>(const Node&)>& motion)
{
    const auto plan = [&] {
        std::vector<std::pair<Node*, Matrix>> moves;
        for (Node* pNode : InTreeOrder(nodes, eTopsOnly)) {
            const std::optional<Matrix> moved = motion(*pNode);
            const Matrix parentWorld = WorldOf(pNode->m_pParent);
            const std::optional<Matrix> local =
                moved ? LocalFor(pNode->m_matrix * parentWorld * *moved, parentWorld) : std::nullopt;
            if (local && *local != pNode->m_matrix) moves.emplace_back(pNode, *local);
        }
        return moves;
    };
    if (plan().empty()) return;
    Change change(m_batch, Planned(strTitle));
    Arrangement arrangement(change);
    for (const auto& [pNode, local] : plan())
        arrangement.SetMatrix(*pNode, local);
    arrangement.PutIntoEffect();
    arrangement.Hold();
}

void Scene::TransformNodes(const std::vector<INode*>& nodes, const Matrix& world)
{
    if (world == Matrix()) return; // rounding would make something of it under turned parents
    MoveInWorld(nodes, QStringLiteral("Transform objects"), [&world](const Node&) { return world; });
}

void Scene::PlaceOnGround(const std::vector<INode*>& nodes)
{
    MoveInWorld(nodes, QStringLiteral("Place objects on the ground"), [](const Node& node) -> std::optional<Matrix> {
        const TBBox<float> box = ComputeNodeBBox(&node);
        if (box.IsEmpty()) return std::nullopt;
        float reach = 0.0f;
        for (const TVec3<float>& corner : {box.min, box.max})
            reach = std::max({reach, std::fabs(corner.x), std::fabs(corner.y), std::fabs(corner.z)});
        if (std::fabs(box.min.z) <= kRounding * reach) return std::nullopt;
        Matrix lift;
        lift.SetTranslation({0.0f, 0.0f, -box.min.z});
        return lift;
    });
}

// ------------------------------------------------------------ removing nodes

void Scene::RemoveNodes(const std::vector<INode*>& nodes)
{
    std::vector<Node*> tops = InTreeOrder(nodes, eTopsOnly);
    if (tops.empty()) return;
    Change change(m_batch, Planned(Title("Remove", tops.size()), &sSceneModifications::removed, tops));
    tops = InTreeOrder(nodes, eTopsOnly);
    if (tops.empty()) return;
    Arrangement arrangement(change);
    arrangement.ReplaceInParents(tops, [](Node&, std::vector<INode*>&) {});
    const std::vector<INode*> leaving = CollectAllChildren(AsInterfaces(tops));
    PrepareToForget(leaving, change);
    arrangement.PutIntoEffect();
    Forget(leaving, change);
    arrangement.Hold();
}

void Scene::PrepareToForget(const std::vector<INode*>& nodes, Change& change)
{
    m_batch.MakeRoom(nodes.size());
    for (const INode* pNode : nodes)
        if (!m_batch.IsNew(pNode)) change.Removed(*pNode); // what came within this batch was never told of
}

/// Ends nodes. The lists of parents that stay are up to the caller.
void Scene::Forget(const std::vector<INode*>& nodes, Change& change) noexcept
{
    bool hasSelected = false;
    for (INode* pNode : nodes) {
        Node& node = *static_cast<Node*>(pNode);
        hasSelected = hasSelected || node.m_bSelected;
        node.m_pParent = nullptr;
        node.m_pScene = nullptr;
        node.m_children.clear();
        const auto owner = m_nodes.find(node.m_nId);
        m_batch.Keep(std::move(owner->second));
        m_nodes.erase(owner);
    }
    change.InScene(eSceneChangedHierarchy);
    if (hasSelected) {
        m_selection.erase(std::remove_if(m_selection.begin(), m_selection.end(),
                                         [](const INode* pNode) { return !pNode->GetScene(); }),
                          m_selection.end());
        change.Selection();
    }
    ForgetModels(change);
}

void Scene::FollowTree(Change& change)
{
    std::vector<INode*> selection = AsInterfaces(InTreeOrder(m_selection, eEach));
    FollowTreeWithModels(change);
    change.InScene(eSceneChangedHierarchy);
    if (m_bSelectionSorted && selection != m_selection) change.Selection();
    m_selection = std::move(selection);
    m_bSelectionSorted = true;
}

// ------------------------------------------------------------------ selection

const std::vector<INode*>& Scene::GetSelection() const
{
    if (!m_bSelectionSorted) m_selection = AsInterfaces(InTreeOrder(m_selection, eEach));
    m_bSelectionSorted = true;
    return m_selection;
}

void Scene::SetSelection(const std::vector<INode*>& nodes)
{
    std::vector<INode*> selection = AsInterfaces(InTreeOrder(nodes, eEach));
    if (selection == GetSelection()) return;
    for (INode* pNode : m_selection)
        static_cast<Node*>(pNode)->m_bSelected = false;
    m_selection = std::move(selection);
    for (INode* pNode : m_selection)
        static_cast<Node*>(pNode)->m_bSelected = true;
    Tell("selectionChanged", [&] { Q_EMIT selectionChanged(); });
}

bool Scene::IsSelected(const INode* pNode) const
{
    return pNode && pNode->GetScene() == this && static_cast<const Node*>(pNode)->m_bSelected;
}

void Scene::SetSelected(INode* pNode, bool bSelected)
{
    if (!pNode || pNode->GetScene() != this || IsSelected(pNode) == bSelected) return;
    if (bSelected) {
        m_selection.push_back(pNode);
        m_bSelectionSorted = m_selection.size() == 1;
    } else {
        m_selection.erase(std::find(m_selection.begin(), m_selection.end(), pNode));
    }
    static_cast<Node*>(pNode)->m_bSelected = bSelected;
    Tell("selectionChanged", [&] { Q_EMIT selectionChanged(); });
}

// ------------------------------------------------------------------ snapshots

SceneState Scene::KeepState() const
{
    SceneState state;
    for (const Node* pNode : AllNodes())
        state.nodes.push_back({pNode->m_nId, pNode->m_matrix, pNode->m_bVisible});
    state.camera = m_camera->GetState();
    state.nModelNode = m_pPlaying ? m_pPlaying->pAnchor->GetId() : 0;
    state.nAnimation = m_nPlaying;
    state.time = m_time;
    return state;
}

void Scene::RestoreState(const SceneState& state, const QString& strName)
{
    const Bracket bracket(m_batch, Planned(QStringLiteral("Go back to '%1'").arg(strName)));
    const auto find = [this](int nId) { return static_cast<Node*>(GetNodeById(nId)); };
    const bool isSame = std::none_of(state.nodes.begin(), state.nodes.end(), [&](const SceneState::Node& kept) {
        const Node* const pNode = find(kept.nId);
        return pNode && (pNode->m_matrix != kept.matrix || pNode->m_bVisible != kept.bVisible);
    });
    if (!isSame) {
        Change change(m_batch);
        Arrangement arrangement(change);
        std::vector<Node*> turned;
        for (const SceneState::Node& kept : state.nodes) {
            Node* const pNode = find(kept.nId);
            if (pNode && pNode->m_matrix != kept.matrix) arrangement.SetMatrix(*pNode, kept.matrix);
            if (!pNode || pNode->m_bVisible == kept.bVisible) continue;
            change.Changed(*pNode, eNodeChangedVisibility);
            turned.push_back(pNode);
        }
        arrangement.PutIntoEffect();
        for (Node* pNode : turned)
            pNode->m_bVisible = !pNode->m_bVisible;
        arrangement.Hold();
    }
    if (bracket.IsAlive()) m_camera->SetState(state.camera);
    if (!bracket.IsAlive()) return;
    const auto found = std::find_if(m_models.begin(), m_models.end(), [&](const std::unique_ptr<PosedModel>& model) {
        return model->pAnchor->GetId() == state.nModelNode;
    });
    if (found != m_models.end())
        Play(found->get(), state.nAnimation, state.time);
    else
        Play(nullptr, -1, 0.0f);
}

} // namespace Host
