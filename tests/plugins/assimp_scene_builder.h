#pragma once

// Scenes as Assimp would hand them over, built by hand.

#include <assimp/scene.h>

#include <algorithm>
#include <string>
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
    return aiMatrix4x4({1, 1, 1}, {}, {x, y, z});
}

/// Owns the scene; what it returns belongs to the scene. A tick of the
/// animation is a millisecond.
struct SceneBuilder {
    aiScene scene;
    aiNode* const root = new aiNode("root");
    aiAnimation* const animation = new aiAnimation;

    SceneBuilder()
    {
        scene.mRootNode = root;
        animation->mTicksPerSecond = 1000.0;
        Append(scene.mAnimations, scene.mNumAnimations, animation);
    }

    aiNode* AddNode(aiNode* parent, const std::string& name, const aiMatrix4x4& local = {})
    {
        aiNode* node = new aiNode(name);
        node->mTransformation = local;
        parent->addChildren(1, &node);
        return node;
    }

    /// A mesh of triangles, three vertices each, shown by `node`.
    aiMesh* AddMesh(aiNode* node, const std::vector<aiVector3D>& corners = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}})
    {
        aiMesh* const mesh = new aiMesh;
        for (const aiVector3D& corner : corners)
            Append(mesh->mVertices, mesh->mNumVertices, corner);
        for (unsigned int i = 0; i < mesh->mNumVertices; i += 3) {
            aiFace face;
            face.mNumIndices = 3;
            face.mIndices = new unsigned int[3]{i, i + 1, i + 2};
            Append(mesh->mFaces, mesh->mNumFaces, face);
        }
        Append(node->mMeshes, node->mNumMeshes, scene.mNumMeshes);
        Append(scene.mMeshes, scene.mNumMeshes, mesh);
        return mesh;
    }

    void AddBone(aiMesh* mesh, const char* name, const aiMatrix4x4& offset, const std::vector<aiVertexWeight>& weights)
    {
        aiBone* const bone = new aiBone;
        bone->mName = name;
        bone->mOffsetMatrix = offset;
        for (const aiVertexWeight& weight : weights)
            Append(bone->mWeights, bone->mNumWeights, weight);
        Append(mesh->mBones, mesh->mNumBones, bone);
    }

    aiNodeAnim* AddChannel(const char* node, const std::vector<aiVectorKey>& positions)
    {
        aiNodeAnim* const channel = new aiNodeAnim;
        channel->mNodeName = node;
        for (const aiVectorKey& key : positions)
            Append(channel->mPositionKeys, channel->mNumPositionKeys, key);
        Append(animation->mChannels, animation->mNumChannels, channel);
        return channel;
    }
};
