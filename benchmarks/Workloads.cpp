#include "benchmarks/Workloads.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

using namespace SkinAnimation;

namespace Workloads {

namespace {

Quaternion RandomRotation(Random& random)
{
    const float x = random.Between(-1.0f, 1.0f);
    const float y = random.Between(-1.0f, 1.0f);
    const float z = random.Between(-1.0f, 1.0f);
    const float w = random.Between(0.1f, 1.0f);
    const float length = std::sqrt(x * x + y * y + z * z + w * w);
    return {x / length, y / length, z / length, w / length};
}

void SetInfluences(SkinVertex& vertex, Random& random, int count, std::size_t boneCount)
{
    float sum = 0.0f;
    for (int j = 0; j < count; ++j) {
        vertex.boneIndices[j] = static_cast<std::uint16_t>(random.Below(static_cast<std::uint32_t>(boneCount)));
        vertex.weights[j] = random.Between(0.1f, 1.0f);
        sum += vertex.weights[j];
    }
    for (int j = 0; j < count; ++j)
        vertex.weights[j] /= sum;
}

} // namespace

std::uint32_t Random::Next()
{
    const std::uint64_t old = m_state;
    m_state = old * 6364136223846793005ULL + 1442695040888963407ULL;
    const auto folded = static_cast<std::uint32_t>(((old >> 18) ^ old) >> 27);
    const auto turn = static_cast<std::uint32_t>(old >> 59);
    return (folded >> turn) | (folded << (-turn & 31));
}

std::uint32_t Random::Below(std::uint32_t limit)
{
    return static_cast<std::uint32_t>((static_cast<std::uint64_t>(Next()) * limit) >> 32);
}

float Random::Between(float low, float high)
{
    return low + (high - low) * (static_cast<float>(Next() >> 8) * 0x1p-24f);
}

TVec3<float> RandomVector(Random& random, float low, float high)
{
    const float x = random.Between(low, high);
    const float y = random.Between(low, high);
    const float z = random.Between(low, high);
    return {x, y, z};
}

float OddFloat(Random& random)
{
    using Limits = std::numeric_limits<float>;
    static constexpr float kOdd[] = {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), 0.0f, -0.0f,
                                     Limits::denorm_min(), -Limits::denorm_min(), Limits::min() * 0.5f,
                                     Limits::max(), -Limits::max(), 1e20f, -1e-25f, 1.0f};
    if (random.Below(8) != 0)
        return random.Between(-10.0f, 10.0f);
    return kOdd[random.Below(static_cast<std::uint32_t>(std::size(kOdd)))];
}

Matrix RandomTransform(Random& random)
{
    const TVec3<float> degrees = RandomVector(random, -180.0f, 180.0f);
    Matrix scale;
    for (int i = 0; i < 3; ++i)
        scale(i, i) = random.Between(0.5f, 2.0f);
    Matrix rest;
    rest.SetRotation(degrees);
    rest.SetTranslation(RandomVector(random, -2.0f, 2.0f));
    return scale * rest;
}

std::unique_ptr<Scene> MakeSkeleton(std::size_t nodeCount, std::size_t keyCount, float step, std::uint64_t seed)
{
    Random random(seed);
    auto scene = std::make_unique<Scene>();
    auto animation = std::make_unique<Animation>();
    animation->layers.resize(1);
    animation->layers[0].tracks.resize(nodeCount);

    for (std::size_t i = 0; i < nodeCount; ++i) {
        Node* const parent = i == 0 ? nullptr : scene->nodes[random.Below(static_cast<std::uint32_t>(i))];
        auto owned = std::make_unique<Node>(QStringLiteral("bone %1").arg(i), RandomTransform(random), Matrix(), parent);
        Node* const node = owned.get();
        if (parent)
            parent->children.push_back(owned.release());
        else
            scene->root = owned.release();
        scene->nodes.push_back(node);

        NodeTrack& track = animation->layers[0].tracks[i];
        track.node = node;
        track.keys.reserve(keyCount);
        float time = 0.0f;
        for (std::size_t k = 0; k < keyCount; ++k) {
            const TVec3<float> translation = RandomVector(random, -1.0f, 1.0f);
            const Quaternion rotation = RandomRotation(random);
            track.keys.push_back({time, translation, rotation, RandomVector(random, 0.9f, 1.1f)});
            time += step > 0.0f ? step : static_cast<float>(random.Below(4)); // repeats, too
        }
        animation->duration = std::max(animation->duration, time);
    }
    scene->animations.push_back(animation.release());
    return scene;
}

Geometry& AddSkin(Scene& scene, std::size_t vertexCount, Influences influences, std::uint64_t seed)
{
    Random random(seed);
    auto owned = std::make_unique<Geometry>(QStringLiteral("skin"), true);
    Geometry& skin = *owned;
    scene.root->geometries.push_back(owned.release());

    const auto columns = std::max<std::size_t>(2, static_cast<std::size_t>(std::sqrt(static_cast<double>(vertexCount))));
    const std::size_t rows = std::max<std::size_t>(2, vertexCount / columns);
    skin.vertices.resize(columns * rows);
    int count = 4;
    for (std::size_t i = 0; i < skin.vertices.size(); ++i) {
        SkinVertex& v = skin.vertices[i];
        const std::size_t row = i / columns;
        v.position = {static_cast<float>(i % columns), static_cast<float>(row), random.Between(-1.0f, 1.0f)};
        v.normal = Normalized(RandomVector(random, -1.0f, 1.0f));
        v.tangent = v.bitangent = {0.0f, 0.0f, 0.0f};
        v.texCoord = {random.Between(0.0f, 1.0f), random.Between(0.0f, 1.0f)};
        v.handedness = 1.0f;
        if (influences == Influences::Random || (influences == Influences::InRuns && i % 512 == 0))
            count = 1 + static_cast<int>(random.Below(4));
        SetInfluences(v, random, count, scene.nodes.size());
    }
    for (std::size_t y = 0; y + 1 < rows; ++y) {
        for (std::size_t x = 0; x + 1 < columns; ++x) {
            const auto a = static_cast<std::uint32_t>(y * columns + x);
            const auto b = static_cast<std::uint32_t>(a + columns);
            skin.indices.insert(skin.indices.end(), {a, a + 1, b, b, a + 1, b + 1});
        }
    }
    skin.normalIndices = skin.indices;
    scene.root->normalCount = skin.vertices.size();
    return skin;
}

} // namespace Workloads
