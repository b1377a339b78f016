#include "benchmarks/NaiveSkin.h"

#include <cmath>

using namespace SkinAnimation;

namespace Naive {

namespace {

/// The determinant of what is left of `m` without one row and one column.
float Minor(const float* m, int row, int column)
{
    int r[3];
    int c[3];
    for (int i = 0; i < 3; ++i) {
        r[i] = 4 * (i < row ? i : i + 1);
        c[i] = i < column ? i : i + 1;
    }
    const auto at = [&](int i, int j) { return m[r[i] + c[j]]; };
    return at(0, 0) * (at(1, 1) * at(2, 2) - at(1, 2) * at(2, 1))
        - at(0, 1) * (at(1, 0) * at(2, 2) - at(1, 2) * at(2, 0))
        + at(0, 2) * (at(1, 0) * at(2, 1) - at(1, 1) * at(2, 0));
}

TVec3<float> MovePoint(const TVec3<float>& p, const Matrix& matrix)
{
    const float* m = matrix.m;
    return {m[0] * p.x + m[4] * p.y + m[8] * p.z + m[12],
            m[1] * p.x + m[5] * p.y + m[9] * p.z + m[13],
            m[2] * p.x + m[6] * p.y + m[10] * p.z + m[14]};
}

TVec3<float> MoveNormal(const TVec3<float>& v, const Matrix& inverse)
{
    const float* n = inverse.m;
    return {n[0] * v.x + n[1] * v.y + n[2] * v.z,
            n[4] * v.x + n[5] * v.y + n[6] * v.z,
            n[8] * v.x + n[9] * v.y + n[10] * v.z};
}

void Normalize(TVec3<float>& v)
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
        for (int j = 0; j < 4; ++j) {
            const float minor = Minor(source.m, i, j);
            cofactors[4 * i + j] = (i + j) % 2 == 0 ? minor : -minor;
        }
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

    for (Node* node : scene.nodes) {
        const Matrix identity;
        Naive::Multiply(node->globalTransform, node->localTransform, node->parent ? node->parent->globalTransform : identity);
        Naive::Multiply(node->meshTransform, node->geometryTransform, node->globalTransform);
        Naive::Multiply(node->skinTransform, node->originGlobalInverse, node->globalTransform);
        Naive::Inverse(node->skinTransformInverse, node->skinTransform);
    }
}

void UpdateMesh(Geometry& geometry, const Node& node, const TVec3<float>& scale, const TVec3<float>& offset,
                const std::vector<Node*>& bones)
{
    Matrix bindInverse;
    Matrix meshInverse;
    Naive::Inverse(bindInverse, node.bindTransform);
    Naive::Inverse(meshInverse, node.meshTransform);
    const TVec3<float> normalScale{1.0f / scale.x, 1.0f / scale.y, 1.0f / scale.z};

    geometry.meshVertices.resize(geometry.vertices.size());
    for (std::size_t i = 0; i < geometry.vertices.size(); ++i) {
        const SkinVertex& v = geometry.vertices[i];
        MeshVertex& o = geometry.meshVertices[i];
        if (geometry.skinned && v.weights[0] > 0.0f) {
            const TVec3<float> p = MovePoint(v.position, node.bindTransform);
            const TVec3<float> n = MoveNormal(v.normal, bindInverse);
            o.position = {0.0f, 0.0f, 0.0f};
            o.normal = {0.0f, 0.0f, 0.0f};
            for (int j = 0; j < 4; ++j) {
                const float w = v.weights[j];
                if (w == 0.0f)
                    break;
                const Node& bone = *bones[v.boneIndices[j]];
                const TVec3<float> bp = MovePoint(p, bone.skinTransform);
                const TVec3<float> bn = MoveNormal(n, bone.skinTransformInverse);
                o.position = {o.position.x + bp.x * w, o.position.y + bp.y * w, o.position.z + bp.z * w};
                o.normal = {o.normal.x + bn.x * w, o.normal.y + bn.y * w, o.normal.z + bn.z * w};
            }
        } else {
            o.position = MovePoint(v.position, node.meshTransform);
            o.normal = MoveNormal(v.normal, meshInverse);
        }
        o.position = {o.position.x * scale.x + offset.x, o.position.y * scale.y + offset.y,
                      o.position.z * scale.z + offset.z};
        o.normal = {o.normal.x * normalScale.x, o.normal.y * normalScale.y, o.normal.z * normalScale.z};
        Normalize(o.normal);
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

} // namespace Naive
