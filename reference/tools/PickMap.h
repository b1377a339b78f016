#pragma once

#include "reference/host/Progress.h"
#include "reference/tools/PickTiles.h"

#include <QColor>
#include <QHash>
#include <QImage>
#include <QPoint>
#include <QString>

#include <vector>

namespace Host {

/// What lies under every pixel of a view. Good until the scene changes.
class PickMap {
public:
    PickMap(const IScene& scene, QSize size, const Progress& progress);

    QSize GetSize() const { return m_size; }

    /// Null and null outside of the view.
    Picked At(QPoint pixel) const;

private:
    QSize m_size;
    std::vector<Picked> m_list;
    std::vector<PickTiles::Place> m_pixels; ///< Places in that list, row by row.
};

/// A colour for each mesh node of a scene, which no other has and which is not the
/// map's background. It depends on the node's place among
/// them only, so it stays when the scene moves or is seen from elsewhere.
class NodeColours {
public:
    explicit NodeColours(const IScene& scene);

    /// \pre the node is one of them
    QColor Of(const INode* node) const;

    /// Those of the scene, in tree order.
    const std::vector<const INode*>& GetNodes() const { return m_nodes; }

private:
    std::vector<const INode*> m_nodes;
    QHash<const INode*, QRgb> m_colours;
};

/// The map in the colours of the nodes, on a neutral background. Format RGB32.
QImage MapPicture(const PickMap& map, const NodeColours& colours);

/// The same with the names of the nodes in it beside it, as many as fit, where text can be written.
QImage WithLegend(const QImage& picture, const PickMap& map, const NodeColours& colours);

/// "/group/mesh": the names of the nodes from below the root down to this one,
/// each a PathPart().
QString NodePath(const INode& node);

} // namespace Host
