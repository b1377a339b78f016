#include "reference/plugins/assimp-loader/BoneBinder.h"

#include "lumenta/skin/Scene.h"
#include "reference/plugins/assimp-loader/Report.h"

#include <assimp/mesh.h>
#include <assimp/scene.h>

#include <algorithm>
#include <limits>

namespace Host {

namespace {

constexpr std::size_t kMaxInfluences = 4;

struct Influence {
    unsigned int vertex;
    std::uint16_t bone;
    double weight;
};

bool IsUsable(const aiVertexWeight& weight, const aiMesh& mesh)
{
    return weight.mVertexId < mesh.mNumVertices && std::isfinite(weight.mWeight) && weight.mWeight > 0.0f;
}

bool MovesVertices(const aiBone& bone, const aiMesh& mesh)
{
    return std::any_of(bone.mWeights, bone.mWeights + bone.mNumWeights,
                       [&](const aiVertexWeight& weight) { return IsUsable(weight, mesh); });
}

double SquaredDistance(const WideMatrix& a, const WideMatrix& b)
{
    double sum = 0.0;
    for (unsigned int row = 0; row < 3; ++row)
        for (unsigned int column = 0; column < 4; ++column)
            sum += (a[row][column] - b[row][column]) * (a[row][column] - b[row][column]);
    return sum;
}

/// Whether two ways into a bone's frame take the mesh to one place, but for
/// the last digits of the floats in the file.
bool AreAlike(const WideMatrix& a, const WideMatrix& b, const std::vector<WideVector>& corners)
{
    constexpr double tolerance = 1e-6;
    double error = 0.0;
    double size = 0.0;
    for (const WideVector& corner : corners) {
        error = std::max(error, (a * corner - b * corner).SquareLength());
        size = std::max(size, (a * corner - a * corners.front()).SquareLength());
    }
    return error <= tolerance * tolerance * size;
}

/// The corners of the box of the vertices, where they are at rest.
std::vector<WideVector> CornersAtRest(const SkinAnimation::Geometry& geometry, const WideMatrix& bind)
{
    TBBox<float> box;
    for (const std::uint32_t index : geometry.indices)
        box.Extend(geometry.vertices[index].position);
    std::vector<WideVector> corners;
    corners.reserve(8);
    for (int i = 0; i < 8; ++i)
        corners.push_back(bind * WideVector(static_cast<double>(i & 1 ? box.max.x : box.min.x),
                                            static_cast<double>(i & 2 ? box.max.y : box.min.y),
                                            static_cast<double>(i & 4 ? box.max.z : box.min.z)));
    return corners;
}

/// Of several weights of one bone on one vertex, the sum counts.
void JoinWeightsOfOneBone(std::vector<Influence>& influences)
{
    std::sort(influences.begin(), influences.end(), [](const Influence& a, const Influence& b) {
        return a.vertex != b.vertex ? a.vertex < b.vertex : a.bone < b.bone;
    });
    std::size_t kept = 0;
    for (std::size_t i = 1; i < influences.size(); ++i) {
        if (influences[i].vertex == influences[kept].vertex && influences[i].bone == influences[kept].bone)
            influences[kept].weight += influences[i].weight;
        else
            influences[++kept] = influences[i];
    }
    influences.resize(std::min(kept + 1, influences.size()));
}

void Weigh(SkinAnimation::SkinVertex& vertex, const Influence* first, const Influence* last)
{
    const std::size_t count = std::min<std::size_t>(kMaxInfluences, static_cast<std::size_t>(last - first));
    double sum = 0.0;
    for (std::size_t j = 0; j < count; ++j)
        sum += first[j].weight;
    for (std::size_t j = 0; j < count; ++j) {
        vertex.boneIndices[j] = first[j].bone;
        vertex.weights[j] = ToFloat(first[j].weight / sum);
    }
}

void WriteInfluences(std::vector<Influence> influences, SkinAnimation::Geometry& geometry)
{
    JoinWeightsOfOneBone(influences);
    std::stable_sort(influences.begin(), influences.end(), [](const Influence& a, const Influence& b) {
        return a.vertex != b.vertex ? a.vertex < b.vertex : a.weight > b.weight;
    });
    const Influence* const end = influences.data() + influences.size();
    for (const Influence* first = influences.data(); first != end;) {
        const Influence* const last =
            std::find_if(first, end, [first](const Influence& i) { return i.vertex != first->vertex; });
        Weigh(geometry.vertices[first->vertex], first, last);
        first = last;
    }
    geometry.skinned = !influences.empty();
}

} // namespace

BoneBinder::BoneBinder(const NodeTable& nodes, SkinAnimation::Scene& scene, Report& report)
    : m_nodes(nodes)
    , m_scene(scene)
    , m_report(report)
{
}

void BoneBinder::Bind(const aiMesh& source, std::size_t meshNode, SkinAnimation::Geometry& geometry)
{
    // Skinned vertices start from the rest pose of their own node, so that must not change any more.
    const WideMatrix bind = ToWideMatrix(m_nodes[meshNode].node->bindTransform);
    const WideMatrix bindInverse = InverseOf(bind);
    const std::vector<WideVector> corners = CornersAtRest(geometry, bind);
    m_carriers.try_emplace(meshNode, std::vector<Carrier>{{meshNode, bindInverse}});

    std::vector<Influence> influences;
    for (unsigned int i = 0; i < source.mNumBones; ++i) {
        const aiBone& bone = *source.mBones[i];
        if (!MovesVertices(bone, source))
            continue;
        const std::optional<std::size_t> node = FindBone(bone, meshNode);
        if (!node)
            continue;
        const std::size_t carrier = CarrierFor(*node, Widen(bone.mOffsetMatrix) * bindInverse, corners);
        if (carrier > std::numeric_limits<std::uint16_t>::max())
            m_report.Refuse(QStringLiteral("bone '%1' is node number %2, and bones must be among the first 65536")
                                .arg(ToText(bone.mName), QString::number(carrier + 1)));
        m_bones.insert(*node);
        for (unsigned int w = 0; w < bone.mNumWeights; ++w) {
            const aiVertexWeight& weight = bone.mWeights[w];
            if (IsUsable(weight, source))
                influences.push_back({weight.mVertexId, static_cast<std::uint16_t>(carrier),
                                      static_cast<double>(weight.mWeight)});
        }
    }
    WriteInfluences(std::move(influences), geometry);
}

/// Of several nodes of the bone's name, the one in whose rest pose the mesh
/// stays nearest to where its own node puts it.
std::optional<std::size_t> BoneBinder::FindBone(const aiBone& bone, std::size_t meshNode)
{
    const std::vector<std::size_t>& candidates = m_nodes.Named(bone.mName);
    const WideMatrix offset = Widen(bone.mOffsetMatrix);
    if (candidates.empty() || !IsFinite(offset)) {
        const QString reason = candidates.empty() ? QStringLiteral("no node") : QStringLiteral("no finite rest pose");
        m_report.Warn(QStringLiteral("Bone '%1' has %2; its weights were left out.").arg(ToText(bone.mName), reason));
        return std::nullopt;
    }
    if (candidates.size() > 1)
        m_report.Warn(QStringLiteral("%1 nodes are named '%2'; the bone of this name is the one whose rest pose fits.")
                          .arg(candidates.size()).arg(ToText(bone.mName)));

    const auto misfit = [&](std::size_t candidate) {
        return SquaredDistance(m_nodes[candidate].restGlobal * offset, m_nodes[meshNode].restGlobal);
    };
    return *std::min_element(candidates.begin(), candidates.end(),
                             [&](std::size_t a, std::size_t b) { return misfit(a) < misfit(b); });
}

std::size_t BoneBinder::CarrierFor(std::size_t bone, const WideMatrix& originInverse,
                                   const std::vector<WideVector>& corners)
{
    std::vector<Carrier>& carriers = m_carriers[bone];
    const auto found = std::find_if(carriers.begin(), carriers.end(), [&](const Carrier& carrier) {
        return AreAlike(carrier.originInverse, originInverse, corners);
    });
    if (found != carriers.end())
        return found->index;

    const std::size_t index = carriers.empty() ? bone : AddHelper(bone);
    carriers.push_back({index, originInverse});

    // The inverse is what posing reads; it is rounded from the exact one, not
    // computed back from a rounded origin.
    SkinAnimation::Node& node = *m_scene.nodes[index];
    if (IsInvertible(originInverse))
        node.SetOriginGlobalTransform(ToMatrix(InverseOf(originInverse)));
    node.originGlobalInverse = ToMatrix(originInverse);
    return index;
}

std::size_t BoneBinder::AddHelper(std::size_t bone)
{
    SkinAnimation::Node& parent = *m_nodes[bone].node;
    auto helper = std::make_unique<SkinAnimation::Node>(
        QStringLiteral("%1 (bind pose %2)").arg(parent.name, QString::number(m_carriers[bone].size() + 1)),
        parent.originGlobalTransform, Matrix(), &parent);
    helper->localTransform = Matrix();
    parent.children.push_back(helper.get());
    SkinAnimation::Node* const owned = helper.release();
    m_scene.nodes.push_back(owned);
    return m_scene.nodes.size() - 1;
}

} // namespace Host
