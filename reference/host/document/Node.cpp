#include "reference/host/document/Node.h"

#include "lumenta/foundation/Exceptions.h"
#include "reference/host/document/Mesh.h"
#include "reference/host/document/Placement.h"
#include "reference/host/document/Scene.h"

namespace Host {

namespace {

/// What is negative, or no number, counts as 0.
float NotBelowZero(float value)
{
    return value > 0.0f ? value : 0.0f;
}

Mesh& MeshAt(const std::vector<IMesh*>& meshes, std::size_t nMesh)
{
    return *static_cast<Mesh*>(meshes[nMesh]);
}

} // namespace

// ---------------------------------------------------------------- all nodes

Node::Node(int nType, int nId, const QString& strName)
    : m_nType(nType)
    , m_nId(nId)
    , m_strName(strName)
{
}

Node::~Node() = default;

template <typename T>
void Node::Assign(T& field, const T& value, eNodeChangedFlags what)
{
    if (field == value) return;
    if (!m_pScene) {
        field = value;
        return;
    }
    sSceneModifications planned;
    planned.changed.push_back(this);
    Change change(m_pScene->m_batch, planned);
    if (field == value) return; // a slot was faster
    change.Changed(*this, what);
    field = value;
    if (what == eNodeChangedName && m_pScene && m_pScene->IsAnchor(*this)) change.InScene(eSceneChangedAnimation);
}

void Node::SetName(const QString& strName)
{
    Assign(m_strName, QString(strName), eNodeChangedName);
}

void Node::SetMatrix(const Matrix& matrix)
{
    if (!m_pScene || m_pScene->GetRoot() != this) Assign(m_matrix, Matrix(matrix), eNodeChangedMatrix);
}

void Node::SetVisible(bool bVisible)
{
    Assign(m_bVisible, bVisible, eNodeChangedVisibility);
}

IScene* Node::GetScene() const
{
    return m_pScene;
}

INode* Node::CreateMesh(const QString& name, const QString& source)
{
    return SceneOrThrow().ReadModel(name, source, this);
}

INode* Node::CreateGroup(const QString& name)
{
    return SceneOrThrow().AddGroup(name, this);
}

INode* Node::CreateLight(const QString& name)
{
    return SceneOrThrow().AddLight(name, this);
}

std::unique_ptr<Node> Node::Copy(int nId) const
{
    auto copy = std::make_unique<Node>(m_nType, nId, m_strName);
    copy->CopyPlacement(*this);
    return copy;
}

void Node::CopyPlacement(const Node& other)
{
    m_matrix = other.m_matrix;
    m_bVisible = other.m_bVisible;
}

Scene& Node::SceneOrThrow() const
{
    if (!m_pScene)
        throw LogicException(QStringLiteral("The node '%1' was removed: nothing can be added to it").arg(m_strName));
    return *m_pScene;
}

// --------------------------------------------------------------- mesh nodes

MeshNode::MeshNode(int nId, const QString& strName, const QString& strSource)
    : Node(eNodeTypeMesh, nId, strName)
    , m_strSource(strSource)
{
}

MeshNode::~MeshNode()
{
    for (IMesh* pMesh : m_meshes)
        delete pMesh;
}

void MeshNode::FillBBox(TBBox<float>& box) const
{
    const Matrix world = WorldOf(this);
    for (const IMesh* pMesh : m_meshes)
        for (const MeshVertex& vertex : pMesh->GetVertices()) {
            TVec3<float> point = vertex.position;
            TransformPoint(point, world);
            box.Extend(point);
        }
}

void MeshNode::SetExcludedFromTracing(bool bExcluded)
{
    Assign(m_bExcluded, bExcluded, eNodeChangedVisibility);
}

IMaterial* MeshNode::GetMaterial(std::size_t nMesh) const
{
    if (!OwnScene()) return nullptr;
    IMaterial* const pMaterial = MeshAt(m_meshes, nMesh).m_pMaterial;
    return pMaterial ? pMaterial : OwnScene()->GetDefaultMaterial();
}

void MeshNode::SetMaterial(std::size_t nMesh, IMaterial* pMaterial)
{
    Scene* const pScene = OwnScene();
    const auto isNews = [&] {
        return OwnScene() && pScene->IsOwnOrNull(pMaterial)
               && MeshAt(m_meshes, nMesh).m_pMaterial != pScene->NullForDefault(pMaterial);
    };
    if (!isNews()) return;
    sSceneModifications planned;
    planned.changed.push_back(this);
    Change change(pScene->m_batch, planned);
    if (!isNews()) return; // a slot has removed it
    change.Changed(*this, eNodeChangedMaterial);
    MeshAt(m_meshes, nMesh).m_pMaterial = pScene->NullForDefault(pMaterial);
}

std::unique_ptr<Node> MeshNode::Copy(int nId) const
{
    auto copy = std::make_unique<MeshNode>(nId, GetName(), m_strSource);
    copy->CopyPlacement(*this);
    copy->m_bExcluded = m_bExcluded;
    for (std::size_t i = 0; i < m_meshes.size(); ++i) {
        const Mesh& mesh = MeshAt(m_meshes, i);
        copy->AddMesh(std::make_unique<Mesh>(mesh.m_strName, mesh.m_vertices, mesh.m_indices), mesh.m_pMaterial);
    }
    return copy;
}

void MeshNode::AddMesh(std::unique_ptr<Mesh> mesh, IMaterial* pMaterial)
{
    mesh->m_pOwner = this;
    mesh->m_pMaterial = pMaterial;
    m_box.Extend(mesh->GetBBox());
    m_meshes.push_back(mesh.get());
    mesh.release();
}

void MeshNode::ReplaceVertices(Mesh& mesh, const std::vector<MeshVertex>& vertices)
{
    mesh.m_vertices = vertices;
    mesh.UpdateBox();
    UpdateBox();
}

std::vector<IMaterial*> MeshNode::GivenMaterials() const
{
    std::vector<IMaterial*> materials;
    for (std::size_t i = 0; i < m_meshes.size(); ++i)
        materials.push_back(MeshAt(m_meshes, i).m_pMaterial);
    return materials;
}

void MeshNode::GiveMaterials(const std::vector<IMaterial*>& materials)
{
    for (std::size_t i = 0; i < m_meshes.size(); ++i)
        MeshAt(m_meshes, i).m_pMaterial = materials[i];
}

void MeshNode::UpdateBox()
{
    m_box = {};
    for (const IMesh* pMesh : m_meshes)
        m_box.Extend(pMesh->GetBBox());
}

// ------------------------------------------------------------------- lights

LightNode::LightNode(int nId, const QString& strName)
    : Node(eNodeTypeLight, nId, strName)
{
}

void LightNode::SetColor(const ColorF& color)
{
    Assign(m_color, ColorF(color), eNodeChangedLight);
}

void LightNode::SetIntensity(float intensity)
{
    Assign(m_intensity, NotBelowZero(intensity), eNodeChangedLight);
}

void LightNode::SetRadius(float radius)
{
    Assign(m_radius, NotBelowZero(radius), eNodeChangedLight);
}

void LightNode::SetCastsShadows(bool bCasts)
{
    Assign(m_bCastsShadows, bCasts, eNodeChangedLight);
}

std::unique_ptr<Node> LightNode::Copy(int nId) const
{
    auto copy = std::make_unique<LightNode>(nId, GetName());
    copy->CopyPlacement(*this);
    copy->m_color = m_color;
    copy->m_intensity = m_intensity;
    copy->m_radius = m_radius;
    copy->m_bCastsShadows = m_bCastsShadows;
    return copy;
}

} // namespace Host
