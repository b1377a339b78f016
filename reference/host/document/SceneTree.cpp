// What a scene does with its tree of nodes.

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/scene/BoundingBoxes.h"
#include "lumenta/scene/NodeHierarchy.h"
#include "reference/host/document/Node.h"
#include "reference/host/document/Placement.h"
#include "reference/host/document/PosedModel.h"
#include "reference/host/document/Scene.h"
#include "reference/host/document/Snapshots.h"
#include "reference/host/images/Image.h"

#include <algorithm>
#include <cmath>
#include <unordered_set>

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

/// Takes the node over. Its parent's list is up to the caller.
Node& Scene::Register(std::unique_ptr<Node> node, Node& parent, Change& change)
{
    Node& registered = *node;
    registered.m_pScene = this;
    registered.m_pParent = &parent;
    m_nodes[registered.m_nId] = std::move(node);
    change.Added(registered);
    change.InScene(eSceneChangedHierarchy);
    return registered;
}

Node& Scene::Append(std::unique_ptr<Node> node, Node& parent, Change& change)
{
    parent.m_children.push_back(node.get());
    return Register(std::move(node), parent, change);
}

INode* Scene::AddNode(std::unique_ptr<Node> node, Node& parent)
{
    Change change(m_batch, Planned(QStringLiteral("Add '%1'").arg(node->m_strName)));
    parent.SceneOrThrow(); // a slot may have removed it
    return &Append(std::move(node), parent, change);
}

INode* Scene::AddGroup(const QString& strName, Node* pParent)
{
    return AddNode(std::make_unique<Node>(eNodeTypeGroup, ++m_nLastId, strName), *pParent);
}

INode* Scene::AddLight(const QString& strName, Node* pParent)
{
    return AddNode(std::make_unique<LightNode>(++m_nLastId, strName), *pParent);
}

Node& Scene::CopyBranch(Node& top, Change& change)
{
    Node& copiedTop = Register(top.Copy(++m_nLastId), *top.m_pParent, change);
    std::vector<std::pair<const Node*, Node*>> pending{{&top, &copiedTop}};
    while (!pending.empty()) {
        const auto [pSource, pCopy] = pending.back();
        pending.pop_back();
        for (const INode* pChild : pSource->m_children) {
            const auto* const pOwn = static_cast<const Node*>(pChild);
            pending.emplace_back(pOwn, &Append(pOwn->Copy(++m_nLastId), *pCopy, change));
        }
    }
    return copiedTop;
}

// ------------------------------------------------------------- moving nodes

/// Rebuilds the children of every parent of `nodes`, once each: replace(node,
/// children) appends what comes into the place of a listed node.
template <typename F>
void Scene::ReplaceInParents(const std::vector<Node*>& nodes, const F& replace)
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
        pParent->m_children = std::move(children);
    }
}

void Scene::SetMatrixOf(Node& node, const Matrix& matrix, Change& change)
{
    if (node.m_matrix == matrix) return;
    node.m_matrix = matrix;
    change.Changed(node, eNodeChangedMatrix);
}

/// Another parent, the same place in the world. Children's lists are up to the caller.
void Scene::Reparent(Node& node, Node& parent, const Matrix& parentWorld, Change& change)
{
    const Matrix formerWorld = WorldOf(node.m_pParent);
    node.m_pParent = &parent;
    change.Moved(node);
    if (formerWorld == parentWorld) return; // not a bit of rounding without need
    if (const std::optional<Matrix> local = LocalFor(node.m_matrix * formerWorld, parentWorld))
        SetMatrixOf(node, *local, change);
}

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
    std::vector<INode*> children = ChildrenAfterMove(parent, moving, nPosition);
    ReplaceInParents(moving, [](Node&, std::vector<INode*>&) {});
    for (Node* pNode : moving)
        Reparent(*pNode, parent, parentWorld, change);
    parent.m_children = std::move(children);
    FollowTree(change);
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
    Node& group = Register(std::make_unique<Node>(eNodeTypeGroup, ++m_nLastId, strName), parent, change);
    ReplaceInParents(members, [&](const Node& node, std::vector<INode*>& children) {
        if (&node == members.front()) children.push_back(&group);
    });
    for (Node* pNode : members)
        Reparent(*pNode, group, parentWorld, change);
    group.m_children = AsInterfaces(members);
    FollowTree(change);
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
    Dissolve(groups, change);
    Forget(groups, change);
    FollowTree(change);
}

/// Hands the children of groups, which come in tree order, to the nodes around
/// them. Linear also where groups hang in groups.
void Scene::Dissolve(const std::vector<Node*>& groups, Change& change)
{
    std::unordered_map<const INode*, Matrix> outward; // from within each group to around the outermost one
    std::vector<Node*> outermost;
    for (Node* pGroup : groups) {
        const auto around = outward.find(pGroup->m_pParent);
        if (around == outward.end()) outermost.push_back(pGroup);
        outward[pGroup] = around == outward.end() ? pGroup->m_matrix : pGroup->m_matrix * around->second;
    }
    ReplaceInParents(outermost, [&](Node& group, std::vector<INode*>& children) {
        Node* const pParent = group.m_pParent;
        std::vector<INode*> pending{&group};
        while (!pending.empty()) {
            Node& node = *static_cast<Node*>(pending.back());
            pending.pop_back();
            if (outward.count(&node)) {
                pending.insert(pending.end(), node.m_children.rbegin(), node.m_children.rend());
                node.m_children.clear();
                continue;
            }
            SetMatrixOf(node, node.m_matrix * outward[node.m_pParent], change);
            node.m_pParent = pParent;
            change.Moved(node);
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
    for (Node* pTop : tops) {
        copies.push_back(&CopyBranch(*pTop, change));
        copyOf[pTop] = copies.back();
    }
    ReplaceInParents(tops, [&](Node& node, std::vector<INode*>& children) {
        children.push_back(&node);
        children.push_back(copyOf[&node]);
    });
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
    for (const auto& [pNode, local] : plan())
        SetMatrixOf(*pNode, local, change);
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
    ReplaceInParents(tops, [](Node&, std::vector<INode*>&) {});
    Forget(tops, change);
}

/// Ends nodes and all that is under them. Their parents' lists are up to the caller.
void Scene::Forget(const std::vector<Node*>& tops, Change& change)
{
    bool hasSelected = false;
    for (INode* pNode : CollectAllChildren(AsInterfaces(tops))) {
        Node& node = *static_cast<Node*>(pNode);
        if (!m_batch.IsNew(pNode)) change.Removed(*pNode); // what came within this batch was never told of
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
    change.InScene(eSceneChangedHierarchy);
    std::vector<INode*> selection = AsInterfaces(InTreeOrder(m_selection, eEach));
    if (m_bSelectionSorted && selection != m_selection) change.Selection();
    m_selection = std::move(selection);
    m_bSelectionSorted = true;
    FollowTreeWithModels(change);
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
    Q_EMIT selectionChanged();
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
    Q_EMIT selectionChanged();
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
        for (const SceneState::Node& kept : state.nodes) {
            Node* const pNode = find(kept.nId);
            if (!pNode) continue;
            SetMatrixOf(*pNode, kept.matrix, change);
            if (pNode->m_bVisible != kept.bVisible) {
                pNode->m_bVisible = kept.bVisible;
                change.Changed(*pNode, eNodeChangedVisibility);
            }
        }
    }
    m_camera->SetState(state.camera);
    const auto found = std::find_if(m_models.begin(), m_models.end(), [&](const std::unique_ptr<PosedModel>& model) {
        return model->pAnchor->GetId() == state.nModelNode;
    });
    if (found != m_models.end())
        Play(found->get(), state.nAnimation, state.time);
    else
        Play(nullptr, -1, 0.0f);
}

} // namespace Host
