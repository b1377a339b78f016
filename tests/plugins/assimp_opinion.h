#pragma once

// A second opinion on posed models: evaluated in double, straight from what
// Assimp read, by the definition of its data. It shares no code with the
// loader or the skin engine. Names of nodes have to be unique.

#include <assimp/scene.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <vector>

namespace Opinion {

using Mat = aiMatrix4x4t<double>;
using Vec = aiVector3t<double>;
using Quat = aiQuaterniont<double>;

struct PosedVertex {
    Vec position;
    Vec normal; ///< Of unit length, or zero.
};

using Mesh = std::vector<PosedVertex>;

inline Vec ToDouble(const aiVector3D& v) { return Vec(double(v.x), double(v.y), double(v.z)); }
inline Quat ToDouble(const aiQuaternion& q)
{
    return Quat(double(q.w), double(q.x), double(q.y), double(q.z)).Normalize();
}

inline Vec Mix(const Vec& a, const Vec& b, double f) { return a * (1.0 - f) + b * f; }

/// Turns from a by the fraction f of the rotation that leads to b.
inline Quat Mix(const Quat& a, Quat b, double f)
{
    if (a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w < 0.0)
        b = Quat(-b.w, -b.x, -b.y, -b.z);
    Quat turn = Quat(a).Conjugate() * b;
    const double sine = std::sqrt(turn.x * turn.x + turn.y * turn.y + turn.z * turn.z);
    if (sine == 0.0)
        return a;
    const double angle = f * std::atan2(sine, turn.w);
    const double s = std::sin(angle) / sine;
    return a * Quat(std::cos(angle), turn.x * s, turn.y * s, turn.z * s);
}

/// Keys in order of time hold before the first and after the last.
template <typename Key>
auto Sample(const Key* keys, unsigned int count, double ticks)
{
    for (unsigned int i = 1; i < count; ++i) {
        if (ticks >= keys[i - 1].mTime && ticks < keys[i].mTime)
            return Mix(ToDouble(keys[i - 1].mValue), ToDouble(keys[i].mValue),
                       (ticks - keys[i - 1].mTime) / (keys[i].mTime - keys[i - 1].mTime));
    }
    return ToDouble(keys[ticks < keys[0].mTime ? 0 : count - 1].mValue);
}

inline Mat LocalOf(const aiNode& node, const aiAnimation* animation, double milliseconds)
{
    Vec scaling, position;
    Quat rotation;
    Mat(node.mTransformation).Decompose(scaling, rotation, position);
    for (unsigned int i = 0; animation && i < animation->mNumChannels; ++i) {
        const aiNodeAnim& channel = *animation->mChannels[i];
        if (channel.mNodeName != node.mName)
            continue;
        const double perSecond = animation->mTicksPerSecond > 0.0 ? animation->mTicksPerSecond : 25.0;
        const double ticks = milliseconds * perSecond / 1000.0;
        if (channel.mNumPositionKeys > 0)
            position = Sample(channel.mPositionKeys, channel.mNumPositionKeys, ticks);
        if (channel.mNumRotationKeys > 0)
            rotation = Sample(channel.mRotationKeys, channel.mNumRotationKeys, ticks);
        if (channel.mNumScalingKeys > 0)
            scaling = Sample(channel.mScalingKeys, channel.mNumScalingKeys, ticks);
        Mat move, stretch;
        Mat::Translation(position, move);
        Mat::Scaling(scaling, stretch);
        return move * Mat(rotation.GetMatrix()) * stretch;
    }
    return Mat(node.mTransformation);
}

struct Placed {
    const aiNode* node;
    Mat global;
};

/// All nodes, depth first.
inline void Place(const aiNode& node, const Mat& parent, const aiAnimation* animation, double milliseconds,
                  std::vector<Placed>& placed)
{
    placed.push_back({&node, parent * LocalOf(node, animation, milliseconds)});
    const Mat global = placed.back().global;
    for (unsigned int i = 0; i < node.mNumChildren; ++i)
        Place(*node.mChildren[i], global, animation, milliseconds, placed);
}

inline PosedVertex Move(const aiMesh& mesh, unsigned int i, const Mat& matrix, double weight)
{
    Mat forNormals = matrix;
    forNormals.Inverse().Transpose();
    const Vec normal = mesh.HasNormals() ? ToDouble(mesh.mNormals[i]) : Vec();
    return {matrix * ToDouble(mesh.mVertices[i]) * weight, aiMatrix3x3t<double>(forNormals) * normal * weight};
}

/// Every weight of the file counts, however many a vertex has.
inline Mesh PoseMesh(const aiMesh& mesh, const Mat& global, const std::map<std::string, Mat>& nodes)
{
    Mesh posed(mesh.mNumVertices);
    std::vector<double> sums(mesh.mNumVertices, 0.0);
    for (unsigned int b = 0; b < mesh.mNumBones; ++b) {
        const aiBone& bone = *mesh.mBones[b];
        const Mat matrix = nodes.at(bone.mName.C_Str()) * Mat(bone.mOffsetMatrix);
        for (unsigned int w = 0; w < bone.mNumWeights; ++w) {
            const aiVertexWeight& weight = bone.mWeights[w];
            const PosedVertex share = Move(mesh, weight.mVertexId, matrix, double(weight.mWeight));
            posed[weight.mVertexId].position += share.position;
            posed[weight.mVertexId].normal += share.normal;
            sums[weight.mVertexId] += double(weight.mWeight);
        }
    }
    for (unsigned int i = 0; i < mesh.mNumVertices; ++i) {
        if (sums[i] == 0.0)
            posed[i] = Move(mesh, i, global, 1.0);
        else
            posed[i].position /= sums[i];
        posed[i].normal.NormalizeSafe();
    }
    return posed;
}

/// Every mesh of every node, nodes depth first, at a moment of an animation,
/// or as the file stands where `animation` is null.
inline std::vector<Mesh> Pose(const aiScene& scene, const aiAnimation* animation, double milliseconds)
{
    std::vector<Placed> placed;
    Place(*scene.mRootNode, Mat(), animation, milliseconds, placed);
    std::map<std::string, Mat> globals;
    for (const Placed& each : placed)
        globals.emplace(each.node->mName.C_Str(), each.global);

    std::vector<Mesh> meshes;
    for (const Placed& each : placed)
        for (unsigned int i = 0; i < each.node->mNumMeshes; ++i)
            meshes.push_back(PoseMesh(*scene.mMeshes[each.node->mMeshes[i]], each.global, globals));
    return meshes;
}

} // namespace Opinion
