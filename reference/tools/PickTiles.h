#pragma once

#include "lumenta/foundation/Matrix.h"

#include <QSize>

#include <cstddef>
#include <cstdint>
#include <vector>

class IMesh;
class INode;
class IScene;

namespace Host {

class View;

/// What lies nearest under a pixel; null and null where no mesh does.
struct Picked {
    INode* node = nullptr;
    const IMesh* mesh = nullptr;
};

/// A view of a scene cut into tiles, each with the triangles that rays through
/// it could meet.
///
/// Picking is linear in the triangles. It gives the same answers for a scene
/// that holds a tile's triangles only, and has few of them to look at. Lights
/// are left out. The scene must not change meanwhile.
class PickTiles {
public:
    PickTiles(const IScene& scene, QSize size);

    /// Where in a list what is picked stands: small, since large pictures have many pixels.
    using Place = std::uint32_t;

    int Rows() const { return m_rows; }

    /// Picks the pixels of a row of tiles, and writes for each the place of what
    /// is there to its own in the whole picture, which is `picked`, row by row.
    /// Pixels where nothing is stay as they are.
    void PickRow(int row, std::vector<Place>& picked) const;

    /// All that can be picked, by place; at place 0 is nothing.
    std::vector<Picked> GetList() const;

private:
    struct Source {
        Picked picked;
        Matrix world;
    };
    struct Candidate {
        std::size_t source;
        std::size_t firstIndex; ///< Of the triangle's corners.
    };
    using Tile = std::vector<Candidate>; ///< In the order of the scene.

    void AddMesh(const Source& source, const View& view);
    void PickTile(const Tile& tile, int column, int row, std::vector<Place>& picked) const;
    std::size_t IndexOf(int row, int column) const
    {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(m_columns) + static_cast<std::size_t>(column);
    }

    const IScene& m_scene;
    QSize m_size;
    int m_columns;
    int m_rows;
    std::vector<Source> m_sources;
    std::vector<Tile> m_tiles;
};

} // namespace Host
