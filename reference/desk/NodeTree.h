#pragma once

#include <QHash>
#include <QTreeWidget>

class IDocumentContext;
class INode;

namespace Host {

/// The nodes of a scene by their names, with a tick for those that are visible.
/// Its selection is the scene's.
///
/// The toolkit's trees descend into themselves, so what lies deeper than a few
/// hundred levels is shown side by side.
class NodeTree final : public QTreeWidget {
    Q_OBJECT

public:
    /// \param document outlives the tree
    explicit NodeTree(IDocumentContext& document, QWidget* pParent = nullptr);

private:
    void Rebuild();
    void Show(const INode& node);
    void ShowSelection();
    void TakeSelection();
    void TakeVisibility(const QTreeWidgetItem& item);
    INode* NodeOf(const QTreeWidgetItem& item) const;

    IDocumentContext& m_document;
    QHash<const INode*, QTreeWidgetItem*> m_items;
};

} // namespace Host
