#include "lumenta/skin/SkinKernels.h"

#include "lumenta/foundation/Float4.h"
#include "lumenta/kernels/Kernels.h"
#include "lumenta/skin/KeySampling.h"
#include "lumenta/skin/Node.h"

#include <algorithm>
#include <cstddef>
#include <memory_resource>
#include <vector>

namespace SkinAnimation {

namespace {

/// Up to this many bones the prepared rows live on the stack (32 KiB).
constexpr std::size_t kBonesOnStack = 256;

Kernels::BoneRows RowsOf(const Matrix& move, const Matrix& inverse)
{
    const Float4 a = Load4(inverse.m);
    const Float4 b = Load4(inverse.m + 4);
    const Float4 c = Load4(inverse.m + 8);
    const Float4 abLow = __builtin_shufflevector(a, b, 0, 4, 1, 5);
    const Float4 abHigh = __builtin_shufflevector(a, b, 2, 6, 3, 7);
    const Float4 turned[] = {__builtin_shufflevector(abLow, c, 0, 1, 4, 4),
                             __builtin_shufflevector(abLow, c, 2, 3, 5, 5),
                             __builtin_shufflevector(abHigh, c, 0, 1, 6, 6), Splat4(-0.0f)};
    Kernels::BoneRows result;
    for (int i = 0; i < 4; ++i) {
        Store4(result.rows[i], Load4(move.m + 4 * i));
        Store4(result.rows[i] + 4, turned[i]);
    }
    return result;
}

/// The rows of a bone. No vertex may name an entry that is null, but one may
/// stand there.
Kernels::BoneRows RowsOf(const Node* bone)
{
    return bone ? RowsOf(bone->skinTransform, bone->skinTransformInverse) : RowsOf(Matrix(), Matrix());
}

/// With the rows of no more bones than the vertices need, who see them under
/// other numbers.
void PoseFew(const Kernels::Table& kernels, const Kernels::PoseQuery& whole, Node* const* bones,
             const SkinVertex* vertices, std::size_t count, MeshVertex* posed)
{
    constexpr std::size_t kFew = 16;
    Kernels::BoneRows rows[4 * kFew];
    SkinVertex few[kFew];
    Kernels::PoseQuery query = whole;
    query.bones = rows;
    for (std::size_t first = 0; first < count; first += kFew) {
        const std::size_t size = std::min(count - first, kFew);
        std::uint16_t next = 0;
        for (std::size_t i = 0; i < size; ++i) {
            few[i] = vertices[first + i];
            for (int j = 0; j < 4 && few[i].weights[j] != 0.0f; ++j) {
                // One that no bone holds may name anything.
                if (few[i].weights[0] > 0.0f) rows[next] = RowsOf(bones[few[i].boneIndices[j]]);
                few[i].boneIndices[j] = next++;
            }
        }
        kernels.poseVertices(query, few, size, posed + first);
    }
}

} // namespace

void PoseNodes(const Kernels::Table& kernels, const std::vector<NodeTrack>& tracks, float time,
               const std::vector<Node*>& nodes)
{
    const NodeTrack* track = tracks.data();
    const NodeTrack* const end = track + tracks.size();
    Kernels::KeyPairs pairs;
    while (const std::size_t count = FindKeys(track, end, time, pairs))
        kernels.setLocalTransforms(pairs, count);
    kernels.moveNodes(nodes.data(), nodes.size());
}

void PoseVertices(const Kernels::Table& kernels, const PoseInput& input, const SkinVertex* vertices, std::size_t count,
                  MeshVertex* posed)
{
    const TVec3<float>& s = input.scale;
    const TVec3<float>& o = input.offset;
    Kernels::PoseQuery query{RowsOf(input.bind, input.bindInverse),
                             RowsOf(input.mesh, input.meshInverse),
                             {s.x, s.y, s.z, 0.0f, 1.0f / s.x, 1.0f / s.y, 1.0f / s.z, 0.0f},
                             {o.x, o.y, o.z, 0.0f, -0.0f, -0.0f, -0.0f, 0.0f},
                             nullptr,
                             input.skinned};

    // Every bone's rows are prepared once, where there are vertices to share the
    // work.
    if (input.skinned && count < input.boneCount / 4) {
        PoseFew(kernels, query, input.bones, vertices, count, posed);
        return;
    }
    alignas(Kernels::BoneRows) std::byte onStack[kBonesOnStack * sizeof(Kernels::BoneRows)];
    std::pmr::monotonic_buffer_resource room(onStack, sizeof onStack);
    std::pmr::vector<Kernels::BoneRows> rows(&room);
    if (input.skinned) {
        rows.reserve(input.boneCount);
        for (std::size_t i = 0; i < input.boneCount; ++i)
            rows.push_back(RowsOf(input.bones[i]));
        query.bones = rows.data();
    }
    kernels.poseVertices(query, vertices, count, posed);
}

void SetCornerNormals(const std::uint32_t* indices, const std::uint32_t* slotOfCorner, std::size_t count,
                      const TVec3<float>* normals, MeshVertex* vertices, std::size_t vertexCount)
{
    // Of the corners of one vertex the last decides: from the last one backwards,
    // the first that names a vertex is the only one that writes it.
    constexpr std::size_t kMarks = 32768;
    if (vertexCount > kMarks) {
        for (std::size_t k = 0; k < count; ++k)
            vertices[indices[k]].normal = normals[slotOfCorner[k]];
        return;
    }
    bool isWritten[kMarks];
    std::fill_n(isWritten, vertexCount, false);
    const auto write = [&](std::size_t k) {
        const std::uint32_t vertex = indices[k];
        if (isWritten[vertex]) return;
        isWritten[vertex] = true;
        vertices[vertex].normal = normals[slotOfCorner[k]];
    };
    std::size_t k = count;
    while (k % 3 != 0)
        write(--k);
    for (; k > 0; k -= 3) {
        write(k - 1);
        write(k - 2);
        write(k - 3);
    }
}

} // namespace SkinAnimation
