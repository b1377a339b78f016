#include "benchmarks/NaiveSkin.h"

#include <cmath>

using namespace SkinAnimation;

namespace Naive {

namespace {

/// The determinant of three rows of three.
inline float Determinant(float a, float b, float c, float d, float e, float f, float g, float h, float i)
{
    return a * (e * i - f * h) - b * (d * i - f * g) + c * (d * h - e * g);
}

inline TVec3<float> MovePoint(const TVec3<float>& p, const Matrix& matrix)
{
    const float* m = matrix.m;
    return {m[0] * p.x + m[4] * p.y + m[8] * p.z + m[12],
            m[1] * p.x + m[5] * p.y + m[9] * p.z + m[13],
            m[2] * p.x + m[6] * p.y + m[10] * p.z + m[14]};
}

inline TVec3<float> MoveNormal(const TVec3<float>& v, const Matrix& inverse)
{
    const float* n = inverse.m;
    return {n[0] * v.x + n[1] * v.y + n[2] * v.z,
            n[4] * v.x + n[5] * v.y + n[6] * v.z,
            n[8] * v.x + n[9] * v.y + n[10] * v.z};
}

inline void Normalize(TVec3<float>& v)
{
    const float length = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
    if (length == 0.0f)
        return;
    v.x /= length;
    v.y /= length;
    v.z /= length;
}

Quaternion Slerp(const Quaternion& a, const Quaternion& b, float f)
{
    const float d = a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w;
    const float c = std::fabs(d);
    float w0 = 1.0f - f;
    float w1 = f;
    if (static_cast<double>(1.0f - c) > 1e-5) {
        const float angle = std::acos(c);
        const float s = 1.0f / std::sin(angle);
        w0 = std::sin((1.0f - f) * angle) * s;
        w1 = std::sin(f * angle) * s;
    }
    if (d < 0.0f)
        w1 = -w1;
    return {a.x * w0 + b.x * w1, a.y * w0 + b.y * w1, a.z * w0 + b.z * w1, a.w * w0 + b.w * w1};
}

TVec3<float> Lerp(const TVec3<float>& a, const TVec3<float>& b, float f)
{
    return {(b.x - a.x) * f + a.x, (b.y - a.y) * f + a.y, (b.z - a.z) * f + a.z};
}

KeyFrame Sample(const std::vector<KeyFrame>& k, float t)
{
    const std::size_t n = k.size();
    if (n == 1 || k[0].time >= t)
        return k[0];
    if (t >= k[n - 1].time)
        return k[n - 1];
    std::size_t j = n - 2;
    float f = 0.0f;
    for (std::size_t i = 0; i + 1 < n; ++i) {
        if (k[i + 1].time > t) {
            j = i;
            f = (t - k[i].time) / (k[i + 1].time - k[i].time);
            break;
        }
    }
    return {t, Lerp(k[j].translation, k[j + 1].translation, f), Slerp(k[j].rotation, k[j + 1].rotation, f),
            Lerp(k[j].scale, k[j + 1].scale, f)};
}

Matrix LocalTransform(const KeyFrame& key)
{
    const auto [x, y, z, w] = key.rotation;
    Matrix scale;
    scale.m[0] = key.scale.x;
    scale.m[5] = key.scale.y;
    scale.m[10] = key.scale.z;

    Matrix rotation;
    rotation.m[0] = 1.0f - 2.0f * (y * y) - 2.0f * (z * z);
    rotation.m[1] = 2.0f * x * y + 2.0f * w * z;
    rotation.m[2] = 2.0f * x * z - 2.0f * w * y;
    rotation.m[4] = 2.0f * x * y - 2.0f * w * z;
    rotation.m[5] = 1.0f - 2.0f * (x * x) - 2.0f * (z * z);
    rotation.m[6] = 2.0f * y * z + 2.0f * w * x;
    rotation.m[8] = 2.0f * x * z + 2.0f * w * y;
    rotation.m[9] = 2.0f * y * z - 2.0f * w * x;
    rotation.m[10] = 1.0f - 2.0f * (x * x) - 2.0f * (y * y);

    Matrix translation;
    translation.m[12] = key.translation.x;
    translation.m[13] = key.translation.y;
    translation.m[14] = key.translation.z;

    Matrix result;
    Naive::Multiply(result, scale, rotation);
    Naive::Multiply(result, result, translation);
    return result;
}

} // namespace

void Multiply(Matrix& result, const Matrix& a, const Matrix& b)
{
    Matrix product;
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            product.m[4 * i + j] = a.m[4 * i] * b.m[j] + a.m[4 * i + 1] * b.m[4 + j] + a.m[4 * i + 2] * b.m[8 + j]
                + a.m[4 * i + 3] * b.m[12 + j];
        }
    }
    result = product;
}

bool Inverse(Matrix& destination, const Matrix& source)
{
    float cofactors[16];
    for (int i = 0; i < 4; ++i) {
        const float* a = source.m + (i < 1 ? 4 : 0);
        const float* b = source.m + (i < 2 ? 8 : 4);
        const float* c = source.m + (i < 3 ? 12 : 8);
        const float sign = i % 2 == 0 ? 1.0f : -1.0f;
        float* const row = cofactors + 4 * i;
        row[0] = sign * Determinant(a[1], a[2], a[3], b[1], b[2], b[3], c[1], c[2], c[3]);
        row[1] = -sign * Determinant(a[0], a[2], a[3], b[0], b[2], b[3], c[0], c[2], c[3]);
        row[2] = sign * Determinant(a[0], a[1], a[3], b[0], b[1], b[3], c[0], c[1], c[3]);
        row[3] = -sign * Determinant(a[0], a[1], a[2], b[0], b[1], b[2], c[0], c[1], c[2]);
    }
    const float determinant = source.m[0] * cofactors[0] + source.m[1] * cofactors[1] + source.m[2] * cofactors[2]
        + source.m[3] * cofactors[3];
    if (determinant == 0.0f)
        return false;

    const float reciprocal = 1.0f / determinant;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            destination.m[4 * i + j] = cofactors[4 * j + i] * reciprocal;
    return true;
}

void CalculateAnimation(Scene& scene, const Animation& animation, float time)
{
    for (const NodeTrack& track : animation.layers[0].tracks)
        if (track.node && !track.keys.empty())
            track.node->localTransform = LocalTransform(Sample(track.keys, time));

    const Matrix identity{};
    for (Node* node : scene.nodes) {
        Naive::Multiply(node->globalTransform, node->localTransform, node->parent ? node->parent->globalTransform : identity);
        Naive::Multiply(node->meshTransform, node->geometryTransform, node->globalTransform);
        Naive::Multiply(node->skinTransform, node->originGlobalInverse, node->globalTransform);
        Naive::Inverse(node->skinTransformInverse, node->skinTransform);
    }
}

void UpdateMesh(Geometry& geometry, const Node& node, const TVec3<float>& scale, const TVec3<float>& offset,
                const std::vector<Node*>& bones)
{
    if (geometry.vertices.empty() || geometry.indices.empty())
        return;
    Matrix bindInverse;
    Matrix meshInverse;
    Naive::Inverse(bindInverse, node.bindTransform);
    Naive::Inverse(meshInverse, node.meshTransform);
    const TVec3<float> normalScale{1.0f / scale.x, 1.0f / scale.y, 1.0f / scale.z};

    geometry.meshVertices.resize(geometry.vertices.size());
    for (std::size_t i = 0; i < geometry.vertices.size(); ++i) {
        const SkinVertex& v = geometry.vertices[i];
        TVec3<float> position{0.0f, 0.0f, 0.0f};
        TVec3<float> normal{0.0f, 0.0f, 0.0f};
        if (geometry.skinned && v.weights[0] > 0.0f) {
            const TVec3<float> p = MovePoint(v.position, node.bindTransform);
            const TVec3<float> n = MoveNormal(v.normal, bindInverse);
            for (int j = 0; j < 4; ++j) {
                const float w = v.weights[j];
                if (w == 0.0f)
                    break;
                const Node& bone = *bones[v.boneIndices[j]];
                const TVec3<float> bp = MovePoint(p, bone.skinTransform);
                const TVec3<float> bn = MoveNormal(n, bone.skinTransformInverse);
                position = {position.x + bp.x * w, position.y + bp.y * w, position.z + bp.z * w};
                normal = {normal.x + bn.x * w, normal.y + bn.y * w, normal.z + bn.z * w};
            }
        } else {
            position = MovePoint(v.position, node.meshTransform);
            normal = MoveNormal(v.normal, meshInverse);
        }
        normal = {normal.x * normalScale.x, normal.y * normalScale.y, normal.z * normalScale.z};
        Normalize(normal);
        MeshVertex& o = geometry.meshVertices[i];
        o.position = {position.x * scale.x + offset.x, position.y * scale.y + offset.y,
                      position.z * scale.z + offset.z};
        o.normal = normal;
        o.texCoord = v.texCoord;
    }
}

void CollectNormals(const Geometry& geometry, std::vector<TVec3<float>>& normals)
{
    if (normals.empty() || geometry.indices.empty() || geometry.indices.size() != geometry.normalIndices.size())
        return;
    for (std::size_t k = 0; k < geometry.indices.size(); k += 3) {
        const TVec3<float>& a = geometry.meshVertices[geometry.indices[k]].position;
        const TVec3<float>& b = geometry.meshVertices[geometry.indices[k + 1]].position;
        const TVec3<float>& c = geometry.meshVertices[geometry.indices[k + 2]].position;
        TVec3<float> fn{(a.y - b.y) * (c.z - b.z) - (a.z - b.z) * (c.y - b.y),
                        (a.z - b.z) * (c.x - b.x) - (a.x - b.x) * (c.z - b.z),
                        (a.x - b.x) * (c.y - b.y) - (a.y - b.y) * (c.x - b.x)};
        Normalize(fn);
        for (std::size_t corner = k; corner < k + 3; ++corner) {
            TVec3<float>& sum = normals[geometry.normalIndices[corner]];
            sum = {sum.x + fn.x, sum.y + fn.y, sum.z + fn.z};
        }
    }
}

void NormalizeAll(std::vector<TVec3<float>>& normals)
{
    for (TVec3<float>& normal : normals)
        Normalize(normal);
}

void SetNormals(Geometry& geometry, const std::vector<TVec3<float>>& normals)
{
    if (normals.empty() || geometry.indices.size() != geometry.normalIndices.size())
        return;
    for (std::size_t k = 0; k < geometry.indices.size(); ++k)
        geometry.meshVertices[geometry.indices[k]].normal = normals[geometry.normalIndices[k]];
}

void PoseMeshes(const Scene& scene)
{
    std::vector<TVec3<float>> normals;
    for (const Node* node : scene.nodes) {
        normals.assign(node->normalCount, TVec3<float>{0.0f, 0.0f, 0.0f});
        for (Geometry* geometry : node->geometries) {
            Naive::UpdateMesh(*geometry, *node, scene.scale, scene.offset, scene.nodes);
            Naive::CollectNormals(*geometry, normals);
        }
        Naive::NormalizeAll(normals);
        for (Geometry* geometry : node->geometries)
            Naive::SetNormals(*geometry, normals);
    }
}

} // namespace Naive
