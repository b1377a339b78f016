#pragma once

// Scenes as Assimp would hand them over, built by hand.

#include <assimp/scene.h>

#include <string>
#include <utility>
#include <vector>

/// Appends to one of Assimp's arrays, which its destructors free.
template <typename T>
void Append(T*& array, unsigned int& count, const T& item)
{
    T* const longer = new T[count + 1];
    std::copy(array, array + count, longer);
    longer[count] = item;
    delete[] array;
    array = longer;
    ++count;
}

inline aiMatrix4x4 MoveBy(float x, float y, float z)
{
    aiMatrix4x4 matrix;
    return aiMatrix4x4::Translation({x, y, z}, matrix);
}

/// Owns the scene; what it returns belongs to the scene. There is a root from
/// the start.
class SceneBuilder {
public:
    aiScene scene;

    SceneBuilder() { scene.mRootNode = new aiNode("root"); }

    aiNode* AddNode(aiNode* parent, const char* name, const aiMatrix4x4& local = {})
    {
        aiNode* const node = new aiNode(name);
        node->mTransformation = local;
        parent->addChildren(1, const_cast<aiNode**>(&node));
        return node;
    }

    /// A mesh of triangles, three vertices each, shown by `node`.
    aiMesh* AddMesh(aiNode* node, const std::vector<aiVector3D>& corners)
    {
        aiMesh* const mesh = new aiMesh;
        mesh->mPrimitiveTypes = aiPrimitiveType_TRIANGLE;
        mesh->mNumVertices = static_cast<unsigned int>(corners.size());
        mesh->mVertices = new aiVector3D[corners.size()];
        std::copy(corners.begin(), corners.end(), mesh->mVertices);
        mesh->mNumFaces = mesh->mNumVertices / 3;
        mesh->mFaces = new aiFace[mesh->mNumFaces];
        for (unsigned int i = 0; i < mesh->mNumFaces; ++i) {
            mesh->mFaces[i].mNumIndices = 3;
            mesh->mFaces[i].mIndices = new unsigned int[3]{3 * i, 3 * i + 1, 3 * i + 2};
        }
        Append(node->mMeshes, node->mNumMeshes, scene.mNumMeshes);
        Append(scene.mMeshes, scene.mNumMeshes, mesh);
        return mesh;
    }

    aiMesh* AddTriangle(aiNode* node) { return AddMesh(node, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}); }

    void AddBone(aiMesh* mesh, const char* name, const aiMatrix4x4& offset,
                 const std::vector<std::pair<unsigned int, float>>& weights)
    {
        aiBone* const bone = new aiBone;
        bone->mName = name;
        bone->mOffsetMatrix = offset;
        for (const auto& [vertex, weight] : weights)
            Append(bone->mWeights, bone->mNumWeights, aiVertexWeight(vertex, weight));
        Append(mesh->mBones, mesh->mNumBones, bone);
    }

    aiAnimation* AddAnimation(double ticksPerSecond, double duration = 0.0)
    {
        aiAnimation* const animation = new aiAnimation;
        animation->mTicksPerSecond = ticksPerSecond;
        animation->mDuration = duration;
        Append(scene.mAnimations, scene.mNumAnimations, animation);
        return animation;
    }

    aiNodeAnim* AddChannel(aiAnimation* animation, const char* node,
                           const std::vector<std::pair<double, aiVector3D>>& positions)
    {
        aiNodeAnim* const channel = new aiNodeAnim;
        channel->mNodeName = node;
        for (const auto& [ticks, position] : positions)
            Append(channel->mPositionKeys, channel->mNumPositionKeys, aiVectorKey(ticks, position));
        Append(animation->mChannels, animation->mNumChannels, channel);
        return channel;
    }
};
