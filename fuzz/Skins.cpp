#include "benchmarks/NaiveSkin.h"
#include "fuzz/Levels.h"
#include "fuzz/Skeleton.h"
#include "lumenta/skin/SkinKernels.h"

// Skins of any numbers, with any bones, and normals of any triangles: the plain
// definition's bits at each level.

using namespace SkinAnimation;
using Fuzz::Require;

namespace {

using Normals = std::vector<TVec3<float>>;

constexpr std::uint16_t kNoBone = 65535;

SkinVertex Vertex(Fuzz::Input& input, std::size_t nBones)
{
    SkinVertex vertex{};
    vertex.position = Fuzz::Vector(input);
    vertex.normal = Fuzz::Vector(input);
    vertex.texCoord = {input.Float(), input.Float()};
    const std::uint32_t nInfluences = input.Below(5);
    for (std::uint32_t j = 0; j < 4; ++j)
        vertex.weights[j] = j < nInfluences ? input.Float() : 0.0f;
    std::fill_n(vertex.boneIndices, 4, kNoBone); // where no bone holds the vertex, any number will do
    for (int j = 0; j < 4 && vertex.weights[0] > 0.0f && vertex.weights[j] != 0.0f; ++j)
        vertex.boneIndices[j] = static_cast<std::uint16_t>(input.Raw<std::uint16_t>() % nBones);
    return vertex;
}

void AddSkin(Fuzz::Input& input, Scene& scene)
{
    auto* const skin = new Geometry(QStringLiteral("skin"), input.Below(8) != 0);
    scene.nodes[input.Byte() % scene.nodes.size()]->geometries.push_back(skin);
    const std::uint32_t nVertices = 1 + (input.Flag() ? input.Below(4) : input.Below(80));
    for (std::uint32_t i = 0; i < nVertices; ++i)
        skin->vertices.push_back(Vertex(input, scene.nodes.size()));
    skin->indices.resize(3 * (1 + input.Below(40)));
    for (std::uint32_t& index : skin->indices)
        index = input.Byte() % nVertices;
    for (Node* const node : scene.nodes)
        node->normalCount = 1 + input.Below(9);
    for (std::size_t k = 0; k < skin->indices.size(); ++k)
        skin->normalIndices.push_back(input.Byte() % 10);
    for (Node* const node : scene.nodes)
        for (Geometry* const geometry : node->geometries)
            for (std::uint32_t& slot : geometry->normalIndices)
                slot %= node->normalCount;
    skin->meshVertices.resize(nVertices);
    scene.scale = Fuzz::Vector(input);
    scene.offset = Fuzz::Vector(input);
}

std::unique_ptr<Scene> MakeModel(Fuzz::Input input)
{
    auto scene = Fuzz::Skeleton(input);
    // More bones than a few vertices need, and enough that they find no room on the stack.
    if (input.Below(16) == 0) scene->nodes.resize(257 + input.Byte(), scene->nodes[0]);
    scene->CalculateAnimation(0, input.Float());
    for (std::uint32_t i = input.Below(3); i > 0; --i)
        AddSkin(input, *scene);
    return scene;
}

void Compare(const Kernels::Table& level, const Scene& ours, const Node& node, Geometry& skin)
{
    Geometry plain = skin;
    Naive::UpdateMesh(plain, node, ours.scale, ours.offset, ours.nodes);
    PoseInput input{skin.skinned,      node.bindTransform, {}, node.meshTransform, {}, ours.scale, ours.offset,
                    ours.nodes.data(), ours.nodes.size()};
    Inverse(input.bindInverse, input.bind);
    Inverse(input.meshInverse, input.mesh);
    PoseVertices(level, input, skin.vertices.data(), skin.vertices.size(), skin.meshVertices.data());
    Require(Bench::SameBits(skin.meshVertices, plain.meshVertices), "posed vertices are the same");

    Normals sums(node.normalCount), plainSums(sums);
    level.addFaceNormals(skin.meshVertices.data(), skin.indices.data(), skin.normalIndices.data(),
                         skin.indices.size() / 3, sums.data());
    Naive::CollectNormals(plain, plainSums);
    Require(Bench::SameBits(sums, plainSums), "sums of normals are the same");
    level.normalizeAll(sums.data(), sums.size());
    Naive::NormalizeAll(plainSums);
    Require(Bench::SameBits(sums, plainSums), "normals are the same");
    SetCornerNormals(skin.indices.data(), skin.normalIndices.data(), skin.indices.size(), sums.data(),
                     skin.meshVertices.data(), skin.meshVertices.size());
    Naive::SetNormals(plain, plainSums);
    Require(Bench::SameBits(skin.meshVertices, plain.meshVertices), "vertices with their normals are the same");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto scene = MakeModel(Fuzz::Input(data, size));
    for (const Kernels::Table* const level : Fuzz::Levels())
        for (const Node* const node : scene->nodes)
            for (Geometry* const skin : node->geometries)
                Compare(*level, *scene, *node, *skin);
    scene->UpdateBoundingBox();
    return 0;
}
