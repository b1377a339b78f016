#include "reference/plugins/assimp-exporter/SceneWriter.h"

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/foundation/Matrix.h"
#include "lumenta/interfaces/IMaterial.h"
#include "lumenta/interfaces/IMesh.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/interfaces/INode.h"
#include "lumenta/interfaces/IScene.h"
#include "reference/plugins/assimp-exporter/MeshWriter.h"

#include <assimp/scene.h>

#include <algorithm>

namespace Host {

namespace {

constexpr float kMillimetersPerMeter = 1000.0f;
constexpr float kMillimetersPerCentimeter = 10.0f;

/// From z-up to y-up; what faced −y faces z.
Matrix Turn(float scale)
{
    return {{scale, 0.0f, 0.0f, 0.0f,  //
             0.0f, 0.0f, -scale, 0.0f, //
             0.0f, scale, 0.0f, 0.0f,  //
             0.0f, 0.0f, 0.0f, 1.0f}};
}

/// Assimp's matrices stand left of column vectors.
aiMatrix4x4 ToAssimp(const Matrix& matrix)
{
    aiMatrix4x4 result;
    for (unsigned int row = 0; row < 4; ++row)
        for (unsigned int column = 0; column < 4; ++column)
            result[row][column] = matrix.m[4 * column + row];
    return result;
}

std::unique_ptr<aiNode> MakeNode(const QString& name, const Matrix& matrix)
{
    auto node = std::make_unique<aiNode>(name.toUtf8().toStdString());
    node->mTransformation = ToAssimp(matrix);
    return node;
}

/// Lets `parent` own the nodes; all at once, since one by one copies what is
/// there each time.
void Adopt(aiNode& parent, std::vector<std::unique_ptr<aiNode>>& children)
{
    if (children.empty()) return;
    parent.mChildren = new aiNode*[children.size()];
    for (std::unique_ptr<aiNode>& child : children) {
        child->mParent = &parent;
        parent.mChildren[parent.mNumChildren++] = child.release();
    }
    children.clear();
}

/// 'a', 'b' and 3 more
QString Listed(const QStringList& names)
{
    constexpr int most = 5;
    const QString list = QStringList(names.mid(0, most)).join(QStringLiteral("', '"));
    const int more = names.size() - most;
    return more > 0 ? QStringLiteral("'%1' and %2 more").arg(list).arg(more) : QStringLiteral("'%1'").arg(list);
}

aiMetadata* UnitOf(const IScene& scene)
{
    aiMetadata* const metadata = aiMetadata::Alloc(1);
    metadata->Set(0, "UnitScaleFactor", scene.GetMillimetersPerUnit() / kMillimetersPerCentimeter);
    return metadata;
}

} // namespace

/// A node whose children are still to be written.
struct SceneWriter::Pending {
    INode* source;
    aiNode* target; ///< The top, where the format has no tree.
    Matrix world;   ///< In the file.
    int nDepth;
};

SceneWriter::SceneWriter(const IScene& scene, const ExportTraits& traits, MaterialWriter& materials,
                         QStringList& warnings)
    : m_scene(scene)
    , m_traits(traits)
    , m_materials(materials)
    , m_warnings(warnings)
{
}

SceneWriter::~SceneWriter() = default;

std::unique_ptr<aiScene> SceneWriter::Write()
{
    INode* const root = m_scene.GetRoot();
    const Matrix turn =
        root->GetMatrix() * Turn(m_traits.isInMeters ? m_scene.GetMillimetersPerUnit() / kMillimetersPerMeter : 1.0f);
    auto target = std::make_unique<aiScene>();
    target->mRootNode = MakeNode(QStringLiteral("Scene"), {}).release();
    // Below the top, whose own matrix not every format keeps.
    std::vector<std::unique_ptr<aiNode>> turned;
    turned.push_back(MakeNode(root->GetName(), m_traits.hasTree ? turn : Matrix()));
    aiNode* const top = turned.front().get();
    Adopt(*target->mRootNode, turned);

    std::vector<Pending> pending{{root, top, turn, 0}};
    while (!pending.empty()) {
        const Pending next = pending.back();
        pending.pop_back();
        AddChildren(next, pending);
    }
    if (m_meshes.empty()) throw Exception(QStringLiteral("the scene holds no visible meshes"));
    Adopt(*top, m_flat);
    target->mMeshes = new aiMesh*[m_meshes.size()];
    for (std::unique_ptr<aiMesh>& mesh : m_meshes)
        target->mMeshes[target->mNumMeshes++] = mesh.release();
    m_materials.GiveTo(*target);
    target->mMetaData = UnitOf(m_scene);
    TellOfLosses();
    return target;
}

void SceneWriter::AddChildren(const Pending& parent, std::vector<Pending>& pending)
{
    if (parent.nDepth == kDeepestTree)
        throw Exception(QStringLiteral("the scene is more than %1 levels deep, below '%2'")
                            .arg(kDeepestTree)
                            .arg(parent.source->GetName()));
    std::vector<std::unique_ptr<aiNode>> targets;
    const std::size_t nFirst = pending.size();
    for (INode* const child : parent.source->GetChildren()) {
        m_nLights += child->GetType() == eNodeTypeLight;
        const bool isMesh = qobject_cast<IMeshNode*>(child) != nullptr;
        if (isMesh && !child->IsVisible()) m_hidden += child->GetName();
        if (!child->IsVisible() && child->GetChildren().empty()) continue;
        Pending next{child, parent.target, child->GetMatrix() * parent.world, parent.nDepth + 1};
        if (m_traits.hasTree) {
            targets.push_back(MakeNode(child->GetName(), child->GetMatrix()));
            next.target = targets.back().get();
        }
        pending.push_back(next);
        if (isMesh && child->IsVisible()) AddMeshes(pending.back());
    }
    Adopt(*parent.target, targets);
    // The first one comes next, so that meshes are in tree order.
    std::reverse(pending.begin() + static_cast<std::ptrdiff_t>(nFirst), pending.end());
}

void SceneWriter::AddMeshes(const Pending& entry)
{
    const IMeshNode& source = *qobject_cast<IMeshNode*>(entry.source);
    const Matrix placement = m_traits.hasTree ? Matrix() : entry.world;
    std::vector<unsigned int> indices;
    for (std::size_t i = 0; i < source.GetMeshes().size(); ++i) {
        const IMesh& mesh = *source.GetMeshes()[i];
        if (mesh.GetIndices().empty()) continue;
        const IMaterial& material = *source.GetMaterial(i);
        indices.push_back(static_cast<unsigned int>(m_meshes.size()));
        m_meshes.push_back(
            WriteMesh(mesh, placement, material.GetTextureMatrix(eMaterialSlotDiffuse), m_materials.IndexOf(material)));
    }
    if (indices.empty()) return;
    aiNode* target = entry.target;
    if (!m_traits.hasTree) {
        m_flat.push_back(MakeNode(entry.source->GetName(), {}));
        target = m_flat.back().get();
    }
    target->mMeshes = new unsigned int[indices.size()];
    std::copy(indices.begin(), indices.end(), target->mMeshes);
    target->mNumMeshes = static_cast<unsigned int>(indices.size());
}

void SceneWriter::TellOfLosses()
{
    if (!m_hidden.isEmpty()) m_warnings += QStringLiteral("What is hidden was left out: %1.").arg(Listed(m_hidden));
    if (!m_traits.hasMaterials) m_warnings += QStringLiteral("Materials were left out.");
    if (m_nLights > 0) m_warnings += QStringLiteral("Of lights only the places were taken over.");
}

} // namespace Host
