#include "reference/plugins/assimp-loader/MeshReader.h"

#include "lumenta/skin/Scene.h"
#include "reference/plugins/assimp-loader/AssimpValues.h"
#include "reference/plugins/assimp-loader/Report.h"

#include <assimp/mesh.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <tuple>

namespace Host {

namespace {

TVec3<float> FiniteOrZero(const aiVector3D& v)
{
    return IsFinite(v) ? ToVector(v) : TVec3<float>{0.0f, 0.0f, 0.0f};
}

SkinAnimation::SkinVertex ReadVertex(const aiMesh& source, unsigned int i, unsigned int textureChannel)
{
    const TVec3<float> zero{0.0f, 0.0f, 0.0f};
    SkinAnimation::SkinVertex vertex;
    vertex.position = FiniteOrZero(source.mVertices[i]);
    vertex.normal = source.HasNormals() ? FiniteOrZero(source.mNormals[i]) : zero;
    const bool hasFrame = source.HasTangentsAndBitangents();
    vertex.tangent = hasFrame ? FiniteOrZero(source.mTangents[i]) : zero;
    vertex.bitangent = hasFrame ? -FiniteOrZero(source.mBitangents[i]) : zero;
    vertex.handedness = Dot(Cross(vertex.normal, vertex.tangent), vertex.bitangent) < 0.0f ? -1.0f : 1.0f;
    vertex.texCoord = {0.0f, 0.0f};
    if (source.HasTextureCoords(textureChannel)) {
        const TVec3<float> coordinates = FiniteOrZero(source.mTextureCoords[textureChannel][i]);
        vertex.texCoord = {coordinates.x, 1.0f - coordinates.y};
    }
    return vertex;
}

struct Triangles {
    std::vector<std::uint32_t> indices;
    bool complete = true; ///< No triangle was unusable.
};

/// Points and lines are no part of a surface; nobody misses them there.
///
/// Assimp lists corners anticlockwise as seen from outside; the normals that
/// the skin engine computes face outwards where they run clockwise.
Triangles ReadTriangles(const aiMesh& source)
{
    Triangles read;
    for (unsigned int i = 0; i < source.mNumFaces; ++i) {
        const aiFace& face = source.mFaces[i];
        if (face.mNumIndices != 3)
            continue;
        const bool usable = std::all_of(face.mIndices, face.mIndices + 3, [&](unsigned int index) {
            return index < source.mNumVertices && IsFinite(source.mVertices[index]);
        });
        if (usable)
            read.indices.insert(read.indices.end(), {face.mIndices[0], face.mIndices[2], face.mIndices[1]});
        read.complete = read.complete && usable;
    }
    return read;
}

bool IsMirroring(const Matrix& matrix)
{
    return ToWideMatrix(matrix).Determinant() < 0.0;
}

/// Posing writes neither tangents nor handedness: they have to be there.
std::vector<MeshVertex> HeadsOf(const std::vector<SkinAnimation::SkinVertex>& vertices)
{
    std::vector<MeshVertex> heads;
    heads.reserve(vertices.size());
    for (const SkinAnimation::SkinVertex& v : vertices)
        heads.push_back({v.position, v.normal, v.tangent, v.bitangent, v.texCoord, v.handedness});
    return heads;
}

} // namespace

std::unique_ptr<SkinAnimation::Geometry> ReadMesh(const aiMesh& source, const QString& name,
                                                  const ReadMaterial& material, Report& report)
{
    Triangles triangles = ReadTriangles(source);
    if (!triangles.complete)
        report.Warn(QStringLiteral("Mesh '%1' has triangles whose corners are missing or not finite; "
                                   "they were left out.").arg(name));
    if (triangles.indices.empty()) {
        report.Warn(QStringLiteral("Mesh '%1' holds no triangles and was left out.").arg(name));
        return nullptr;
    }
    if (source.HasNormals() && !HasUsableNormals(source))
        report.Warn(QStringLiteral("The normals of mesh '%1' are not finite; "
                                   "they were computed from its triangles.").arg(name));

    auto geometry = std::make_unique<SkinAnimation::Geometry>(name, false);
    geometry->materialName = material.material.name;
    geometry->materialParameters = material.material.parameters;
    geometry->indices = std::move(triangles.indices);
    geometry->vertices.reserve(source.mNumVertices);
    for (unsigned int i = 0; i < source.mNumVertices; ++i)
        geometry->vertices.push_back(ReadVertex(source, i, material.textureChannel));
    geometry->meshVertices = HeadsOf(geometry->vertices);
    return geometry;
}

bool HasUsableNormals(const aiMesh& source)
{
    return source.HasNormals()
        && std::all_of(source.mNormals, source.mNormals + source.mNumVertices,
                       [](const aiVector3D& normal) { return IsFinite(normal); });
}

void ShareNormals(SkinAnimation::Node& node, const std::vector<SkinAnimation::Geometry*>& geometries)
{
    std::map<std::tuple<float, float, float>, std::uint32_t> slots;
    for (SkinAnimation::Geometry* geometry : geometries) {
        geometry->normalIndices.reserve(geometry->indices.size());
        for (const std::uint32_t index : geometry->indices) {
            const TVec3<float>& corner = geometry->vertices[index].position;
            const auto next = static_cast<std::uint32_t>(slots.size());
            geometry->normalIndices.push_back(slots.try_emplace({corner.x, corner.y, corner.z}, next).first->second);
        }
    }
    node.normalCount = slots.size();
}

void FaceOutwards(const SkinAnimation::Scene& scene)
{
    std::vector<bool> bones;
    for (const SkinAnimation::Node* const node : scene.nodes)
        bones.push_back(IsMirroring(node->skinTransform));
    for (const SkinAnimation::Node* const node : scene.nodes) {
        const bool isRigidMirrored = IsMirroring(node->meshTransform);
        const bool isBindMirrored = IsMirroring(node->bindTransform);
        for (SkinAnimation::Geometry* const geometry : node->geometries) {
            for (std::size_t i = 0; i < geometry->indices.size(); i += 3) {
                const SkinAnimation::SkinVertex& corner = geometry->vertices[geometry->indices[i]];
                const bool hasBone = geometry->skinned && corner.weights[0] > 0.0f;
                if (!(hasBone ? isBindMirrored != bones[corner.boneIndices[0]] : isRigidMirrored)) continue;
                std::swap(geometry->indices[i + 1], geometry->indices[i + 2]);
                if (!geometry->normalIndices.empty())
                    std::swap(geometry->normalIndices[i + 1], geometry->normalIndices[i + 2]);
            }
        }
    }
}

} // namespace Host
