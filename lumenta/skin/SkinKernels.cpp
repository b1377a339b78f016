#include "lumenta/skin/SkinKernels.h"

#include "lumenta/foundation/Float4.h"
#include "lumenta/skin/Node.h"

#include <cmath>
#include <cstddef>
#include <memory_resource>
#include <vector>

// A matrix row is one register, so a point times a matrix is three products of
// a broadcast component with a row. Lane by lane these are the scalar terms in
// the scalar order. The fourth lane carries whatever falls out and is never
// stored.

namespace SkinAnimation {

namespace {

/// Up to this many bones the prepared rows live on the stack (28 KiB).
constexpr std::size_t kBonesOnStack = 256;

/// One matrix that moves points and the inverse that moves its normals, the
/// latter turned so that a normal too is multiplied row by row.
struct MoveRows {
    Float4 point[4];
    Float4 normal[3];

    MoveRows(const Matrix& move, const Matrix& inverse)
        : point{Load4(move.m), Load4(move.m + 4), Load4(move.m + 8), Load4(move.m + 12)}
        , normal{Float4{inverse.m[0], inverse.m[4], inverse.m[8], 0.0f},
                 Float4{inverse.m[1], inverse.m[5], inverse.m[9], 0.0f},
                 Float4{inverse.m[2], inverse.m[6], inverse.m[10], 0.0f}}
    {
    }

    Float4 MovePoint(float x, float y, float z) const
    {
        return Splat(x) * point[0] + Splat(y) * point[1] + Splat(z) * point[2] + point[3];
    }

    Float4 MoveNormal(float x, float y, float z) const
    {
        return Splat(x) * normal[0] + Splat(y) * normal[1] + Splat(z) * normal[2];
    }
};

Float4 Lanes(const TVec3<float>& v)
{
    return Float4{v.x, v.y, v.z, 0.0f};
}

Float4 Unit(Float4 v)
{
    const float length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    return length == 0.0f ? v : v / Splat(length);
}

/// `bone(index)` answers the rows of a bone.
template <typename BoneLookup>
void PoseWith(const PoseInput& input, const SkinVertex* vertices, std::size_t count, MeshVertex* posed,
              const BoneLookup& bone)
{
    const MoveRows bind(input.bind, input.bindInverse);
    const MoveRows rigid(input.mesh, input.meshInverse);
    const Float4 scale = Lanes(input.scale);
    const Float4 offset = Lanes(input.offset);
    const Float4 normalScale = Lanes({1.0f / input.scale.x, 1.0f / input.scale.y, 1.0f / input.scale.z});

    for (std::size_t i = 0; i < count; ++i) {
        const SkinVertex& v = vertices[i];
        Float4 position;
        Float4 normal;
        if (input.skinned && v.weights[0] > 0.0f) {
            const Float4 p = bind.MovePoint(v.position.x, v.position.y, v.position.z);
            const Float4 n = bind.MoveNormal(v.normal.x, v.normal.y, v.normal.z);
            position = Splat(0.0f);
            normal = Splat(0.0f);
            for (int j = 0; j < 4 && v.weights[j] != 0.0f; ++j) {
                const MoveRows& rows = bone(v.boneIndices[j]);
                const Float4 weight = Splat(v.weights[j]);
                position += rows.MovePoint(p[0], p[1], p[2]) * weight;
                normal += rows.MoveNormal(n[0], n[1], n[2]) * weight;
            }
        } else {
            position = rigid.MovePoint(v.position.x, v.position.y, v.position.z);
            normal = rigid.MoveNormal(v.normal.x, v.normal.y, v.normal.z);
        }
        Store3(posed[i].position, position * scale + offset);
        Store3(posed[i].normal, Unit(normal * normalScale));
        posed[i].texCoord = v.texCoord;
    }
}

} // namespace

void PoseVertices(const PoseInput& input, const SkinVertex* vertices, std::size_t count, MeshVertex* posed)
{
    // Turning every bone's inverse once pays only where there are enough
    // vertices to share the work.
    if (!input.skinned || count < input.boneCount / 4) {
        PoseWith(input, vertices, count, posed, [&input](std::size_t index) {
            const Node& bone = *input.bones[index];
            return MoveRows(bone.skinTransform, bone.skinTransformInverse);
        });
        return;
    }

    alignas(MoveRows) std::byte onStack[kBonesOnStack * sizeof(MoveRows)];
    std::pmr::monotonic_buffer_resource room(onStack, sizeof onStack);
    std::pmr::vector<MoveRows> rows(&room);
    rows.reserve(input.boneCount);
    for (std::size_t i = 0; i < input.boneCount; ++i) {
        // No vertex may name an entry that is null, but one may stand there.
        const Node* const bone = input.bones[i];
        rows.emplace_back(bone ? bone->skinTransform : Matrix(), bone ? bone->skinTransformInverse : Matrix());
    }

    PoseWith(input, vertices, count, posed,
             [&rows](std::size_t index) -> const MoveRows& { return rows[index]; });
}

void AddFaceNormals(const MeshVertex* vertices, const std::uint32_t* indices, const std::uint32_t* slotOfCorner,
                    std::size_t count, TVec3<float>* normals)
{
    const auto position = [vertices, indices](std::size_t corner) {
        // Four floats from a record of fifteen: the position and one more.
        return Load4(reinterpret_cast<const float*>(vertices + indices[corner]));
    };

    for (std::size_t k = 0; k < count; k += 3) {
        const Float4 b = position(k + 1);
        const Float4 u = position(k) - b;
        const Float4 v = position(k + 2) - b;
        const Float4 normal = Unit(Shuffle<1, 2, 0, 3>(u) * Shuffle<2, 0, 1, 3>(v)
                                   - Shuffle<2, 0, 1, 3>(u) * Shuffle<1, 2, 0, 3>(v));
        for (std::size_t corner = k; corner < k + 3; ++corner) {
            TVec3<float>& sum = normals[slotOfCorner[corner]];
            sum = {sum.x + normal[0], sum.y + normal[1], sum.z + normal[2]};
        }
    }
}

void NormalizeAll(TVec3<float>* normals, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        Store3(normals[i], Unit(Lanes(normals[i])));
}

} // namespace SkinAnimation
