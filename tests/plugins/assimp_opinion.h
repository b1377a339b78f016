#pragma once

// A second opinion on posed models: straight from what Assimp read, by the
// definition of its data. It shares no code with the loader or the skin
// engine. Names of nodes have to be unique.

#include "reference/host/Model.h"
#include "reference/host/Picture.h"

#include <assimp/scene.h>

#include <algorithm>
#include <cmath>

inline std::vector<Host::PosedMesh> MeshesOf(const SkinAnimation::Scene& scene)
{
    Host::MeshCollector collector;
    scene.CreateMeshes(collector);
    return collector.meshes;
}

/// A moment of an animation, or the file as it stands where that is null.
struct Opinion {
    using Mat = aiMatrix4x4t<double>;
    using Vec = aiVector3t<double>;

    const aiScene& scene;
    const aiAnimation* animation;
    double milliseconds;

    /// The first and the last usable key hold beyond their time.
    template <typename Key>
    static void Sample(const Key* first, unsigned int count, double ticks, typename Key::elem_type& value)
    {
        std::vector<Key> keys;
        std::copy_if(first, first + count, std::back_inserter(keys),
                     [](const Key& key) { return std::fabs(key.mTime) < 1e30 && key.mValue == key.mValue; });
        std::stable_sort(keys.begin(), keys.end());
        if (!keys.empty()) value = ticks < keys.front().mTime ? keys.front().mValue : keys.back().mValue;
        for (std::size_t i = 1; i < keys.size(); ++i) {
            const double elapsed = ticks - keys[i - 1].mTime;
            if (elapsed >= 0.0 && ticks < keys[i].mTime)
                Assimp::Interpolator<Key>()(value, keys[i - 1], keys[i],
                                            float(elapsed / (keys[i].mTime - keys[i - 1].mTime)));
        }
    }

    Mat LocalOf(const aiNode& node) const
    {
        for (unsigned int i = 0; animation && i < animation->mNumChannels; ++i) {
            const aiNodeAnim& channel = *animation->mChannels[i];
            if (channel.mNodeName != node.mName) continue;
            aiVector3D scaling, position;
            aiQuaternion rotation;
            aiMatrix4x4 stretch;
            node.mTransformation.Decompose(scaling, rotation, position);
            const double perSecond = animation->mTicksPerSecond > 0.0 ? animation->mTicksPerSecond : 25.0;
            const double ticks = milliseconds * perSecond / 1000.0;
            Sample(channel.mPositionKeys, channel.mNumPositionKeys, ticks, position);
            Sample(channel.mRotationKeys, channel.mNumRotationKeys, ticks, rotation);
            Sample(channel.mScalingKeys, channel.mNumScalingKeys, ticks, scaling);
            aiMatrix4x4::Scaling(scaling, stretch);
            return Mat(aiMatrix4x4(aiVector3D(1), rotation.Normalize(), position) * stretch);
        }
        return Mat(node.mTransformation);
    }

    Mat GlobalOf(const aiNode* node) const
    {
        Mat global;
        for (; node; node = node->mParent)
            global = LocalOf(*node) * global;
        return global;
    }

    /// Where the vertices of a mesh are. Every weight of the file counts, however many a vertex has.
    std::vector<Vec> Pose(const aiMesh& mesh, const aiNode& node) const
    {
        std::vector<Vec> posed(mesh.mNumVertices);
        std::vector<double> sums(mesh.mNumVertices, 0.0);
        for (unsigned int b = 0; b < mesh.mNumBones; ++b) {
            const aiBone& bone = *mesh.mBones[b];
            const Mat matrix = GlobalOf(scene.mRootNode->FindNode(bone.mName)) * Mat(bone.mOffsetMatrix);
            for (const aiVertexWeight* w = bone.mWeights; w != bone.mWeights + bone.mNumWeights; ++w) {
                posed[w->mVertexId] += matrix * Vec(mesh.mVertices[w->mVertexId]) * double(w->mWeight);
                sums[w->mVertexId] += double(w->mWeight);
            }
        }
        const Mat rigid = GlobalOf(&node);
        for (unsigned int i = 0; i < mesh.mNumVertices; ++i)
            posed[i] = sums[i] == 0.0 ? rigid * Vec(mesh.mVertices[i]) : posed[i] / sums[i];
        return posed;
    }

    /// All meshes below the node, depth first.
    void Pose(const aiNode& node, std::vector<std::vector<Vec>>& meshes) const
    {
        for (unsigned int i = 0; i < node.mNumMeshes; ++i)
            meshes.push_back(Pose(*scene.mMeshes[node.mMeshes[i]], node));
        for (unsigned int i = 0; i < node.mNumChildren; ++i)
            Pose(*node.mChildren[i], meshes);
    }

    /// How far posed meshes are from this opinion: the largest distance of a
    /// vertex, as a share of the model's size. Infinite where there are other
    /// meshes, other vertices, or positions that are not finite.
    double Deviation(const std::vector<Host::PosedMesh>& posed) const
    {
        std::vector<std::vector<Vec>> meshes;
        Pose(*scene.mRootNode, meshes);
        const auto sameSize = [](const auto& a, const auto& b) { return a.size() == b.vertices.size(); };
        if (!std::equal(meshes.begin(), meshes.end(), posed.begin(), posed.end(), sameSize)) return HUGE_VAL;
        double error = 0.0, size = 0.0;
        for (std::size_t m = 0; m < meshes.size(); ++m) {
            for (std::size_t i = 0; i < meshes[m].size(); ++i) {
                const TVec3<float>& found = posed[m].vertices[i].position;
                const double distance = (meshes[m][i] - Vec(aiVector3D(found.x, found.y, found.z))).Length();
                error = std::isfinite(distance) ? std::max(error, distance) : HUGE_VAL;
                size = std::max(size, (meshes[m][i] - meshes[0][0]).Length());
            }
        }
        return error / size;
    }
};

/// The largest deviation of a model from the opinion on `source`: as the file
/// stands, then in every animation at, between and beyond its keys.
inline double LargestDeviation(const Host::Model& model, const aiScene& source)
{
    double largest = Opinion{source, nullptr, 0.0}.Deviation(MeshesOf(*model.scene));
    for (unsigned int a = 0; a < source.mNumAnimations; ++a) {
        for (const float moment : {-0.3f, 0.0f, 0.06f, 0.137f, 0.33f, 0.5f, 0.7f, 0.911f, 1.0f, 1.7f}) {
            const float time = moment * model.scene->animations.at(a)->duration;
            model.scene->CalculateAnimation(int(a), time);
            const Opinion opinion{source, source.mAnimations[a], double(time)};
            largest = std::max(largest, opinion.Deviation(MeshesOf(*model.scene)));
        }
    }
    return largest;
}
