#include "reference/host/document/Mesh.h"

#include "reference/host/document/Node.h"

#include <cstring>
#include <utility>

namespace Host {

Mesh::Mesh(const QString& strName, std::vector<MeshVertex> vertices, std::vector<unsigned int> indices)
    : m_strName(strName)
    , m_vertices(std::move(vertices))
    , m_indices(std::move(indices))
{
    UpdateBox();
}

const IMeshNode* Mesh::GetOwner() const
{
    return m_pOwner;
}

bool Mesh::HasVertices(const std::vector<MeshVertex>& vertices) const
{
    return m_vertices.size() == vertices.size()
           && std::memcmp(m_vertices.data(), vertices.data(), vertices.size() * sizeof(MeshVertex)) == 0;
}

void Mesh::UpdateBox()
{
    m_box = {};
    for (const MeshVertex& vertex : m_vertices)
        m_box.Extend(vertex.position);
}

} // namespace Host
