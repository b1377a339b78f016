#pragma once

#include "lumenta/interfaces/IMesh.h"

class IMaterial;

namespace Host {

class MeshNode;

/// Triangles of a mesh node, kept in memory with their box.
class Mesh final : public IMesh {
    Q_OBJECT

public:
    Mesh(const QString& strName, std::vector<MeshVertex> vertices, std::vector<unsigned int> indices);

    QString GetName() const override { return m_strName; }
    const TBBox<float>& GetBBox() const override { return m_box; }
    const std::vector<MeshVertex>& GetVertices() const override { return m_vertices; }
    const std::vector<unsigned int>& GetIndices() const override { return m_indices; }
    const IMeshNode* GetOwner() const override;
    /// Bit by bit.
    bool HasVertices(const std::vector<MeshVertex>& vertices) const;

private:
    friend class MeshNode;

    void UpdateBox();

    QString m_strName;
    std::vector<MeshVertex> m_vertices;
    std::vector<unsigned int> m_indices;
    TBBox<float> m_box;
    MeshNode* m_pOwner = nullptr;
    IMaterial* m_pMaterial = nullptr; ///< Null for the default one.
};

} // namespace Host
