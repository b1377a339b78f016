#include "reference/desk/NodeTree.h"

#include "lumenta/interfaces/IScene.h"
#include "lumenta/interfaces/IUserInterface.h"
#include "lumenta/platform/IDocumentContext.h"
#include "reference/desk/Guarded.h"

#include <QHeaderView>
#include <QPointer>
#include <QSignalBlocker>

namespace Host {

namespace {

constexpr int kDeepest = 200;
constexpr int kExpanded = 1000; ///< Nodes, of trees that open at once.

/// A node whose item is still to be made.
struct Pending {
    INode* pNode;
    QTreeWidgetItem* pParent;
    int nDepth;
};

} // namespace

NodeTree::NodeTree(IDocumentContext& document, QWidget* pParent)
    : QTreeWidget(pParent)
    , m_document(document)
{
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setSelectionMode(ExtendedSelection);
    const IScene* const scene = document.GetScene();
    connect(scene, &IScene::sceneChanged, this, [this](eSceneChangedFlags what) {
        if (what & eSceneChangedHierarchy) Rebuild();
    });
    connect(scene, &IScene::nodeChanged, this, [this](const INode* pNode, eNodeChangedFlags what) {
        if (what & (eNodeChangedName | eNodeChangedVisibility)) Show(*pNode);
    });
    connect(scene, &IScene::selectionChanged, this, &NodeTree::ShowSelection);
    connect(this, &QTreeWidget::itemSelectionChanged, this, &NodeTree::TakeSelection);
    connect(this, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem* pItem) { TakeVisibility(*pItem); });
    Rebuild();
}

void NodeTree::Rebuild()
{
    const QSignalBlocker quiet(this);
    clear();
    m_items.clear();
    std::vector<Pending> pending;
    const auto addChildren = [&](const INode& of, QTreeWidgetItem* pItem, int nDepth) {
        const std::vector<INode*>& children = of.GetChildren();
        for (auto child = children.rbegin(); child != children.rend(); ++child)
            pending.push_back({*child, pItem, nDepth});
    };
    addChildren(*m_document.GetScene()->GetRoot(), invisibleRootItem(), 0);
    while (!pending.empty()) {
        const Pending next = pending.back();
        pending.pop_back();
        auto* const pItem = new QTreeWidgetItem(next.pParent);
        pItem->setData(0, Qt::UserRole, next.pNode->GetId());
        m_items.insert(next.pNode, pItem);
        Show(*next.pNode);
        const bool bDeeper = next.nDepth < kDeepest;
        addChildren(*next.pNode, bDeeper ? pItem : next.pParent, bDeeper ? next.nDepth + 1 : next.nDepth);
    }
    if (m_items.size() <= kExpanded) expandAll();
    ShowSelection();
}

void NodeTree::Show(const INode& node)
{
    QTreeWidgetItem* const pItem = m_items.value(&node);
    if (!pItem) return;
    const QSignalBlocker quiet(this);
    pItem->setText(0, node.GetName().isEmpty() ? QStringLiteral("(no name)") : node.GetName());
    pItem->setCheckState(0, node.IsVisible() ? Qt::Checked : Qt::Unchecked);
}

void NodeTree::ShowSelection()
{
    const QSignalBlocker quiet(this);
    QItemSelection selection;
    const std::vector<INode*>& nodes = m_document.GetScene()->GetSelection();
    for (const INode* const pNode : nodes)
        if (QTreeWidgetItem* const pItem = m_items.value(pNode)) {
            const QModelIndex index = indexFromItem(pItem);
            selection.select(index, index);
        }
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    QTreeWidgetItem* const pOnly = nodes.size() == 1 ? m_items.value(nodes.front()) : nullptr;
    if (pOnly) scrollToItem(pOnly);
    viewport()->update();
}

void NodeTree::TakeSelection()
{
    Guarded(*m_document.GetUserInterface(), [this] {
        std::vector<INode*> nodes;
        const QList<QTreeWidgetItem*> items = selectedItems();
        for (const QTreeWidgetItem* const pItem : items)
            if (INode* const pNode = NodeOf(*pItem)) nodes.push_back(pNode);
        m_document.GetScene()->SetSelection(nodes);
    });
}

void NodeTree::TakeVisibility(const QTreeWidgetItem& item)
{
    Guarded(*m_document.GetUserInterface(), [&] {
        if (INode* const pNode = NodeOf(item)) pNode->SetVisible(item.checkState(0) == Qt::Checked);
    });
}

INode* NodeTree::NodeOf(const QTreeWidgetItem& item) const
{
    return m_document.GetScene()->GetNodeById(item.data(0, Qt::UserRole).toInt());
}

} // namespace Host
