#include "benchmarks/NaiveScene.h"
#include "benchmarks/NaiveSkin.h"
#include "benchmarks/SceneStandIns.h"
#include "benchmarks/Workloads.h"
#include "lumenta/scene/TraceTriangles.h"
#include "lumenta/skin/SkinKernels.h"

#include <QtTest>

#include <algorithm>
#include <cmath>

// Every level against the plain definitions: the same bits, or both not a number.

using namespace SkinAnimation;
using Workloads::Random;
using Vec3 = TVec3<float>;
Q_DECLARE_METATYPE(const Kernels::Table*)

namespace {

template <typename Record>
bool Same(const std::vector<Record>& a, const std::vector<Record>& b)
{
    const auto* const x = reinterpret_cast<const float*>(a.data());
    const auto* const y = reinterpret_cast<const float*>(b.data());
    return std::equal(x, x + a.size() * sizeof(Record) / sizeof(float), y, [](float p, float q) {
        return std::memcmp(&p, &q, sizeof p) == 0 || (std::isnan(p) && std::isnan(q));
    });
}

Vec3 OddVector(Random& random)
{
    return {Workloads::OddFloat(random), Workloads::OddFloat(random), Workloads::OddFloat(random)};
}

float PowerOf10(Random& random, float low, float high)
{
    return std::pow(10.0f, random.Between(low, high));
}

/// Triangles within `scale` of `centre` that are hard to pass over rightly: needles,
/// caps, collinear corners, sizes down to `smallest` of the scale. Most of them lie so
/// that `ray` passes by, near or far along an edge; there are odd values in an odd mesh.
std::vector<Vec3> HardTriangles(Random& random, const Ray& ray, float scale, const Vec3& centre, float smallest,
                                float tolerance, bool odd)
{
    std::vector<Vec3> corners;
    for (std::uint32_t i = random.Below(41); i > 0; --i) {
        const float size = PowerOf10(random, std::log10(smallest), 0.0f) * scale;
        const Vec3 places[] = {Workloads::RandomVector(random, -1.0f, 1.0f) * scale + centre, centre,
                               ray.start + (ray.end - ray.start) * random.Between(-0.2f, 1.2f)};
        Vec3 a = places[std::min(random.Below(6), 2u)];
        const Vec3 u = Workloads::RandomVector(random, -size, size);
        const float thins[] = {0.5f, PowerOf10(random, -3.0f, -1.0f), PowerOf10(random, -7.0f, 0.0f), 0.0f};
        const Vec3 v =
            u * random.Between(-1.0f, 2.0f) + Workloads::RandomVector(random, -size, size) * thins[random.Below(4)];
        const float distances[] = {0.0f, tolerance * PowerOf10(random, -1.0f, 3.0f),
                                   scale * PowerOf10(random, -7.0f, 0.5f)};
        if (random.Below(3) == 0)
            a = a - u * random.Between(-1.5f, 1.5f) - v * random.Between(-1.5f, 1.5f);
        else
            a = a + Normalized(random.Below(2) != 0 ? u : v) * distances[random.Below(3)];
        corners.insert(corners.end(), {a, a + u, a + v});
        std::rotate(corners.end() - 3, corners.end() - 3 + random.Below(3), corners.end());
        if (odd && random.Below(4) == 0) corners[corners.size() - 1 - random.Below(3)] = OddVector(random);
    }
    return corners;
}

/// Keys and nodes such as no loader should make, the same for the same seed.
void Break(Scene& scene, std::uint64_t seed)
{
    Random random(seed);
    std::vector<Node*>& nodes = scene.nodes;
    std::vector<NodeTrack>& tracks = scene.animations[0]->layers[0].tracks;
    for (NodeTrack& track : tracks) {
        const std::uint32_t rate = random.Below(2) != 0 ? 12 : 1000;
        float shift = 0.0f;
        for (std::size_t i = 1; i < track.keys.size() && rate == 12; ++i) {
            const float before = track.keys[i - 1].time;
            float& time = track.keys[i].time;
            if (random.Below(60) == 0) shift = 1000.0f * (shift + 1.0f);
            time = random.Below(3) == 0 ? std::nextafter(before, HUGE_VALF) : std::max(before, time + shift);
        }
        if (random.Below(8) == 0) track.keys.front().time = -HUGE_VALF;
        if (random.Below(8) == 0) track.keys.back().time = HUGE_VALF;
        for (std::size_t i = 0; i < track.keys.size(); ++i) {
            KeyFrame& key = track.keys[i];
            const Quaternion before = track.keys[i == 0 ? 0 : i - 1].rotation;
            const auto odd = [&random] { return Workloads::OddFloat(random); };
            switch (random.Below(rate)) {
            case 0: key.translation = OddVector(random); break;
            case 1: key.rotation = {odd(), odd(), odd(), odd()}; break;
            case 2: key.scale = OddVector(random); break;
            case 3: key.scale = key.translation = {-0.0f, 0.0f, -0.0f}; break;
            case 4: key.scale = {1.0f, random.Below(2) != 0 ? 0.0f : -1.0f, 1.0f}; break; // singular, or mirrored
            case 5: key.rotation = {0.0f, -0.0f, 0.0f, 0.0f}; break;
            case 6: key.rotation = {-before.x, -before.y, -before.z, -before.w}; break;
            case 7: key.rotation = {before.x + random.Between(0.0f, 0.01f), before.y, before.z, before.w}; break;
            case 8: key.rotation = {before.y, -before.x, before.w, -before.z}; break; // a right angle to it
            default: break;
            }
        }
    }
    tracks[3].node = nullptr;
    tracks[4].keys.clear();
    tracks[5].keys.resize(1);
    tracks[6].node = tracks[7].node; // both times next to each other
    tracks[8].node = tracks[30].node;
    tracks.resize(10 + 5 * seed); // 13 to 48 that count
    nodes[20]->parent = nullptr;
    nodes[21]->parent = nodes[21];
    nodes.insert(nodes.begin(), {nodes[1], nodes[0]}); // once where its parent was, once where it is
    for (int i = 0; i < 6; ++i) // children before parents, and some twice
        std::swap(nodes[random.Below(40)], nodes[random.Below(40)]);
    for (int i = 0; i < 6; ++i)
        nodes.push_back(nodes[random.Below(40)]);
    for (Matrix* const matrix : {&nodes[9]->originGlobalInverse, &nodes[19]->geometryTransform})
        for (float& value : matrix->m)
            value = Workloads::OddFloat(random);
}

} // namespace

class LevelsTest : public QObject {
    Q_OBJECT

    static void Levels()
    {
        QTest::addColumn<const Kernels::Table*>("level");
        QTest::newRow("baseline") << &Kernels::baselineTable;
#if defined(__x86_64__)
        if (__builtin_cpu_supports("avx2"))
            QTest::newRow("AVX2") << &Kernels::avx2Table;
        else
            qWarning("this processor lacks AVX2: that level is not tested");
#endif
    }

private Q_SLOTS:
    void Matrices_data() { Levels(); }

    void Matrices()
    {
        QFETCH(const Kernels::Table*, level);
        Random random(3);
        int singular = 0;
        for (int round = 0; round < 200000; ++round) {
            std::vector<Matrix> ours{Workloads::RandomTransform(random), Workloads::RandomTransform(random), Matrix()};
            for (float& value : ours[round % 2].m)
                if (round % 3 == 0) value = Workloads::OddFloat(random);
            if (round % 6 == 0) ours[1 - round % 2].m[random.Below(16)] = Workloads::OddFloat(random);
            if (round % 7 == 0) std::memcpy(ours[1].m + 4, ours[1].m + 4 * random.Below(4), 16); // singular, if not by rounding
            std::vector<Matrix> plain = ours;

            // The result may be either operand, or neither.
            const std::size_t to = random.Below(3);
            level->multiply(ours[to].m, ours[0].m, ours[1].m);
            Naive::Multiply(plain[to], plain[0], plain[1]);
            QVERIFY(Same(ours, plain));
            const bool isInverted = Naive::Inverse(plain[to], plain[1]);
            QCOMPARE(level->invert(ours[to].m, ours[1].m), isInverted);
            QVERIFY(Same(ours, plain));
            singular += !isInverted;
        }
        QVERIFY2(singular > 1000, qPrintable(QString::number(singular)));
    }

    void Boxes_data() { Levels(); }

    void Boxes()
    {
        QFETCH(const Kernels::Table*, level);
        Random random(4);
        int met = 0, singular = 0;
        for (int round = 0; round < 200000; ++round) {
            // Every other round all on a grid, where many only touch.
            const auto point = [&random, round] {
                const Vec3 p = Workloads::RandomVector(random, -4.0f, 4.0f);
                return round % 2 != 0 ? p : Vec3{std::floor(p.x), std::floor(p.y), std::floor(p.z)};
            };
            Matrix global = round % 2 != 0 ? Workloads::RandomTransform(random) : Matrix();
            Ray ray(point(), point());
            TBBox<float> box;
            if (round % 16 != 1) box.Extend(point()), box.Extend(point());
            if (round % 8 == 3) std::swap(box.min, box.max);
            if (round % 5 == 0) global.m[random.Below(16)] = Workloads::OddFloat(random);
            if (round % 7 == 0) (random.Below(2) != 0 ? box.min : box.max) = OddVector(random);
            if (round % 9 == 0) ray = {ray.start, OddVector(random)};

            Kernels::SegmentEnds ends;
            for (int i = 0; i < 8; ++i) {
                const Vec3& end = i < 4 ? ray.start : ray.end;
                ends.x[i] = end.x;
                ends.y[i] = end.y;
                ends.z[i] = end.z;
            }
            std::vector<Vec3> ours(2), theirs{ray.start, ray.end};
            const bool isMet = level->meetBox(global.m, ends, box, ours.data());

            Matrix inverse;
            const bool isInverted = Naive::Inverse(inverse, global);
            for (Vec3& end : theirs)
                TransformPoint(end, inverse);
            const Ray local(theirs[0], theirs[1]);
            QCOMPARE(local.IsIntersect(box), Naive::IsIntersect(local, box));
            QCOMPARE(isMet, isInverted && Naive::IsIntersect(local, box));
            QVERIFY(!isMet || Same(ours, theirs));
            met += isMet;
            singular += !isInverted;
        }
        QVERIFY2(met > 20000 && met < 180000 && singular > 100, qPrintable(QString::number(met)));
    }

    void Skins_data() { Levels(); }

    void Skins()
    {
        QFETCH(const Kernels::Table*, level);
        Random random(5);
        for (const auto mix : {Workloads::Influences::Four, Workloads::Influences::Random, Workloads::Influences::InRuns})
            for (const auto& [count, bones] : {std::pair(1, 60), {7, 400}, {33, 60}, {90, 400}, {500, 300}, {20000, 60}}) {
                const auto scene = Workloads::MakeSkeleton(bones, 2, 40.0f, count);
                Geometry& skin = Workloads::AddSkin(*scene, count, mix, count + 1);
                scene->CalculateAnimation(0, 25.0f);
                for (SkinVertex& vertex : skin.vertices) {
                    if (random.Below(3) != 0) continue;
                    (random.Below(2) != 0 ? vertex.position : vertex.normal) = OddVector(random);
                    if (random.Below(4) == 0) vertex.weights[random.Below(4)] = Workloads::OddFloat(random);
                    const auto dead = std::find(vertex.weights, vertex.weights + 4, 0.0f) - vertex.weights;
                    std::fill(vertex.boneIndices + dead, vertex.boneIndices + 4, std::uint16_t(65535));
                    if (dead < 3) vertex.weights[dead + 1] = Workloads::OddFloat(random);
                    if (random.Below(20) == 0) vertex.weights[0] = -1.0f;
                }
                scene->nodes[1]->skinTransform.m[random.Below(16)] = Workloads::OddFloat(random);
                scene->nodes[2]->skinTransformInverse.m[random.Below(16)] = Workloads::OddFloat(random);
                if (count == 500) scene->root->bindTransform.m[random.Below(12)] = Workloads::OddFloat(random);
                skin.indices.resize(skin.indices.size() - 3 * random.Below(static_cast<std::uint32_t>(skin.indices.size() / 3)));
                skin.normalIndices.resize(skin.indices.size());
                for (std::uint32_t& slot : skin.normalIndices)
                    if (mix == Workloads::Influences::InRuns) slot = random.Below(10) % scene->root->normalCount;
                skin.skinned = random.Below(4) != 0;
                MeshVertex before{}; // whose other fields stay
                before.tangent = before.bitangent = {1.5f, -2.5f, 3.5f};
                before.handedness = -1.0f;
                skin.meshVertices.assign(skin.vertices.size(), before);
                Geometry plain = skin;
                const Vec3 scale{-0.5f, 3.0f, count == 33 ? 0.0f : 1.0f}, offset{0.1f, -2.0f, 1e6f};
                Naive::UpdateMesh(plain, *scene->root, scale, offset, scene->nodes);

                PoseInput input{skin.skinned, scene->root->bindTransform, {}, scene->root->meshTransform, {}, scale, offset,
                                scene->nodes.data(), scene->nodes.size()};
                Inverse(input.bindInverse, input.bind);
                Inverse(input.meshInverse, input.mesh);
                PoseVertices(*level, input, skin.vertices.data(), skin.vertices.size(), skin.meshVertices.data());
                QVERIFY(Same(skin.meshVertices, plain.meshVertices));

                std::vector<Vec3> ours(scene->root->normalCount, OddVector(random)), theirs(ours);
                level->addFaceNormals(skin.meshVertices.data(), skin.indices.data(), skin.normalIndices.data(),
                                      skin.indices.size() / 3, ours.data());
                Naive::CollectNormals(plain, theirs);
                QVERIFY(Same(ours, theirs));
                level->normalizeAll(ours.data(), ours.size());
                Naive::NormalizeAll(theirs);
                QVERIFY(Same(ours, theirs));
            }
    }

    void Poses_data() { Levels(); }

    void Poses()
    {
        QFETCH(const Kernels::Table*, level);
        Random random(41);
        int singular = 0;
        for (const std::size_t keyCount : {1, 2, 32, 33, 700})
            for (std::uint64_t seed = 1; seed < 9; ++seed) {
                // Uneven key times with repeats, on whole numbers, so that a time can fall on keys.
                const auto ours = Workloads::MakeSkeleton(50, keyCount, 0.0f, seed);
                const auto plain = Workloads::MakeSkeleton(50, keyCount, 0.0f, seed);
                Break(*ours, seed);
                Break(*plain, seed);
                const float length = ours->animations[0]->duration;
                std::vector<float> times{-1.0f, 0.0f, length, 2.0f * length, std::nanf(""), HUGE_VALF, -HUGE_VALF};
                for (int i = 0; i < 30; ++i) {
                    times.push_back(random.Between(0.0f, length));
                    times.push_back(std::floor(times.back()));
                    times.push_back(1000.0f + times.back());
                }
                for (const float time : times) {
                    PoseNodes(*level, ours->animations[0]->layers[0].tracks, time, ours->nodes);
                    Naive::CalculateAnimation(*plain, *plain->animations[0], time);
                    for (const auto matrix : {&Node::localTransform, &Node::globalTransform, &Node::meshTransform,
                                              &Node::skinTransform, &Node::skinTransformInverse})
                        for (std::size_t i = 0; i < ours->nodes.size(); ++i)
                            QVERIFY(Same(std::vector<Matrix>{ours->nodes[i]->*matrix},
                                         std::vector<Matrix>{plain->nodes[i]->*matrix}));
                    Matrix inverse;
                    for (const Node* node : plain->nodes)
                        singular += !Naive::Inverse(inverse, node->skinTransform);
                }
            }
        QVERIFY2(singular > 1000, qPrintable(QString::number(singular)));
    }

    // Some vertices are no corner's, and keep what they hold.
    void CornersDecideInTurn()
    {
        Random random(9);
        for (int round = 0; round < 2000; ++round) {
            const std::uint32_t vertexCount = round % 500 == 0 ? 40000 : 1 + random.Below(40);
            std::vector<MeshVertex> ours(vertexCount);
            for (MeshVertex& vertex : ours)
                vertex.normal = Workloads::RandomVector(random, -1.0f, 1.0f);
            std::vector<std::uint32_t> indices(random.Below(60)), slotOfCorner;
            std::vector<Vec3> normals(7);
            for (Vec3& normal : normals)
                normal = OddVector(random);
            for (std::uint32_t& index : indices) {
                index = random.Below(vertexCount);
                slotOfCorner.push_back(random.Below(7));
            }
            std::vector<MeshVertex> plain = ours;
            for (std::size_t k = 0; k < indices.size(); ++k)
                plain[indices[k]].normal = normals[slotOfCorner[k]];
            SetCornerNormals(indices.data(), slotOfCorner.data(), indices.size(), normals.data(), ours.data(), vertexCount);
            QVERIFY(Same(ours, plain));
        }
    }

    void Triangles_data() { Levels(); }

    void Triangles()
    {
        QFETCH(const Kernels::Table*, level);
        Random random(17);
        int hits = 0;
        for (int round = 0; round < 120000; ++round) {
            // About the origin there is room for the tiniest triangles in the widest of worlds.
            const bool isCentred = round % 3 == 2;
            const float scale = PowerOf10(random, -3.0f, isCentred ? 22.0f : 4.0f);
            const Vec3 centre =
                isCentred ? Vec3{} : Workloads::RandomVector(random, -1.0f, 1.0f) * (round % 5 == 0 ? 1e4f : scale);
            const float away = isCentred ? PowerOf10(random, -30.0f, 0.0f) : 1.0f;
            const float length = round % 3 == 0 ? PowerOf10(random, -30.0f, 3.5f) : 3.0f;
            const Vec3 start = Workloads::RandomVector(random, -2.0f, 2.0f) * (away * scale) + centre;
            const Vec3 end = isCentred ? start * random.Between(-1.5f, -0.5f)
                                             + Workloads::RandomVector(random, -away, away)
                                                   * (scale * PowerOf10(random, -4.0f, 0.0f))
                                       : start + Workloads::RandomVector(random, -length, length) * scale;
            const Ray ray(start, end);

            // Boxes need not hold what is in the mesh, and one that is no box leaves no tolerance.
            static constexpr float kSides[] = {500.0f, -1.0f, 0.01f, 3.0f};
            const float side = kSides[random.Below(4)];
            const TBBox<float> box(centre, centre + Vec3{side, 0.0f, 0.0f} * scale);
            const float tolerance = side < 0.0f ? 0.0f : 0.0001f * Length(box.max - box.min);
            StandIn::Mesh mesh(
                HardTriangles(random, ray, scale, centre, isCentred ? 1e-30f : 1e-8f, tolerance, round % 7 == 0));
            mesh.box = box;

            const float ours = TraceTriangles(*level, ray.start, ray.end, tolerance, mesh.vertices.data(),
                                              mesh.indices.data(), mesh.indices.size() / 3);
            QVERIFY(Same(std::vector<float>{ours}, std::vector<float>{Naive::Trace(ray, mesh)}));
            hits += ours < 1.0f;
        }
        QVERIFY2(hits > 5000, qPrintable(QString::number(hits)));
    }

    void ManyTriangles_data() { Levels(); }

    // Enough of them, on shared corners, to be asked for ahead.
    void ManyTriangles()
    {
        QFETCH(const Kernels::Table*, level);
        Random random(23);
        std::vector<Vec3> corners(999);
        for (Vec3& corner : corners)
            corner = Workloads::RandomVector(random, -1.0f, 1.0f);
        StandIn::Mesh mesh(corners);
        mesh.indices.resize(3 * 270005);
        for (unsigned int& index : mesh.indices)
            index = random.Below(999);
        mesh.box = {};
        for (int i = 0; i < 8; ++i) {
            const Vec3 start = Workloads::RandomVector(random, -1.0f, 1.0f) + Vec3{i < 4 ? 0.0f : 3.0f, 0.0f, 0.0f};
            const Vec3 end = start + Workloads::RandomVector(random, -1.0f, 1.0f) * 0.1f;
            const float ours = TraceTriangles(*level, start, end, 0.0f, mesh.vertices.data(), mesh.indices.data(), 270005);
            QVERIFY(Same(std::vector<float>{ours}, std::vector<float>{Naive::Trace(Ray(start, end), mesh)}));
            QCOMPARE(ours < 1.0f, i < 4);
        }
    }
};

QTEST_APPLESS_MAIN(LevelsTest)
#include "levels_test.moc"
