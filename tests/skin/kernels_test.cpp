#include "benchmarks/NaiveSkin.h"
#include "benchmarks/Workloads.h"
#include "lumenta/platform/IMeshNodeBuilder.h"

#include <QtTest>

#include <cmath>
#include <cstring>

// The library's loops against their plain definitions: the same bits, or both
// not a number (which bits a NaN has depends on the order of operands that the
// compiler picked).

using namespace SkinAnimation;
using Workloads::Influences;
using Workloads::Random;

namespace {

bool SameFloat(float a, float b)
{
    return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

/// Index of the first float that differs, or -1.
template <typename Record>
int FirstDifference(const Record* a, const Record* b, std::size_t count)
{
    const std::size_t floats = count * sizeof(Record) / sizeof(float);
    for (std::size_t i = 0; i < floats; ++i) {
        float x, y;
        std::memcpy(&x, reinterpret_cast<const char*>(a) + i * sizeof x, sizeof x);
        std::memcpy(&y, reinterpret_cast<const char*>(b) + i * sizeof y, sizeof y);
        if (!SameFloat(x, y))
            return static_cast<int>(i);
    }
    return -1;
}

Matrix OddMatrix(Random& random)
{
    Matrix matrix;
    for (float& element : matrix.m)
        element = Workloads::OddFloat(random);
    return matrix;
}

TVec3<float> OddVector(Random& random)
{
    const float x = Workloads::OddFloat(random);
    const float y = Workloads::OddFloat(random);
    return {x, y, Workloads::OddFloat(random)};
}

/// Keeps the last mesh it was handed.
struct Emitted final : IMeshNodeBuilder {
    std::vector<MeshVertex> vertices;

    void BeginModel(const QString&, std::size_t) override {}
    void EndModel() override {}
    void AddMeshNode(const QString&, std::vector<MeshVertex>& posed, std::vector<unsigned int>&, const QString&,
                     const QMap<QString, QVariant>&) override
    {
        vertices = posed;
    }
};

/// Breaks a skin in every way that is not an index error.
void MakeOdd(Scene& scene, Geometry& skin, Random& random)
{
    for (Node* node : scene.nodes) {
        if (random.Below(4) == 0) {
            node->skinTransform = OddMatrix(random);
            node->skinTransformInverse = OddMatrix(random);
        }
    }
    for (SkinVertex& v : skin.vertices) {
        v.position = OddVector(random);
        v.normal = OddVector(random);
        for (float& weight : v.weights) {
            if (random.Below(3) == 0)
                weight = Workloads::OddFloat(random);
        }
        for (int j = 0; j < 4; ++j) {
            if (v.weights[j] == 0.0f) { // what lies behind the end may be anything
                for (; j < 4; ++j)
                    v.boneIndices[j] = 65535;
            }
        }
    }
}

} // namespace

class KernelsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void matrices();
    void skinning_data();
    void skinning();
    void poses_data();
    void poses();
};

void KernelsTest::matrices()
{
    Random random(11);
    for (int round = 0; round < 200000; ++round) {
        const bool odd = round % 2 != 0;
        const Matrix a = odd ? OddMatrix(random) : Workloads::RandomTransform(random);
        Matrix b = odd ? OddMatrix(random) : Workloads::RandomTransform(random);
        if (round % 16 == 0)
            std::memcpy(b.m + 4, b.m, 16); // two equal rows: singular, or nearly so by rounding

        Matrix ours, naive;
        Multiply(ours, a, b);
        Naive::Multiply(naive, a, b);
        QCOMPARE(FirstDifference(&ours, &naive, 1), -1);

        ours = naive = a;
        QCOMPARE(Inverse(ours, b), Naive::Inverse(naive, b));
        QCOMPARE(FirstDifference(&ours, &naive, 1), -1);
    }
}

void KernelsTest::skinning_data()
{
    QTest::addColumn<int>("boneCount");
    QTest::addColumn<int>("vertexCount");
    QTest::addColumn<int>("influences");
    QTest::addColumn<bool>("odd");

    const int four = static_cast<int>(Influences::Four);
    const int random = static_cast<int>(Influences::Random);
    QTest::newRow("a large skin, four bones a vertex") << 60 << 100000 << four << false;
    QTest::newRow("a large skin, one to four bones a vertex") << 60 << 100000 << random << false;
    QTest::newRow("a large skin, odd values everywhere") << 60 << 100000 << random << true;
    QTest::newRow("more bones than the stack has room for") << 1000 << 5000 << random << true;
    QTest::newRow("far fewer vertices than bones") << 1000 << 24 << random << true;
    QTest::newRow("a single bone") << 1 << 24 << four << false;
}

void KernelsTest::skinning()
{
    QFETCH(int, boneCount);
    QFETCH(int, vertexCount);
    QFETCH(int, influences);
    QFETCH(bool, odd);

    Random random(21);
    const auto scene = Workloads::MakeSkeleton(static_cast<std::size_t>(boneCount), 2, 40.0f, 5);
    Geometry& ours = Workloads::AddSkin(*scene, static_cast<std::size_t>(vertexCount),
                                        static_cast<Influences>(influences), 6);
    scene->CalculateAnimation(0, 25.0f);
    if (odd)
        MakeOdd(*scene, ours, random);
    Geometry naive = ours;

    const Node& root = *scene->root;
    for (const TVec3<float>& scale : {TVec3<float>{1.0f, 1.0f, 1.0f}, TVec3<float>{-0.5f, 3.0f, 0.0f}}) {
        for (const bool skinned : {true, false}) {
            ours.skinned = naive.skinned = skinned;
            const TVec3<float> offset{0.1f, -2.0f, 1e6f};
            ours.UpdateMesh(&root, scale, offset, scene->nodes);
            Naive::UpdateMesh(naive, root, scale, offset, scene->nodes);
            QCOMPARE(FirstDifference(ours.meshVertices.data(), naive.meshVertices.data(), ours.meshVertices.size()), -1);

            std::vector<TVec3<float>> normals(root.normalCount, TVec3<float>{0.0f, 0.0f, 0.0f});
            std::vector<TVec3<float>> expected = normals;
            ours.CollectNormals(normals);
            Naive::CollectNormals(naive, expected);
            QCOMPARE(FirstDifference(normals.data(), expected.data(), normals.size()), -1);

            // The buffer itself is normalised on the way to the builder only.
            Naive::NormalizeAll(expected);
            naive.SetNormals(expected);
            Emitted emitted;
            scene->scale = scale;
            scene->offset = offset;
            scene->CreateMeshes(emitted);
            QCOMPARE(FirstDifference(emitted.vertices.data(), naive.meshVertices.data(), emitted.vertices.size()), -1);
        }
    }
}

void KernelsTest::poses_data()
{
    QTest::addColumn<int>("nodeCount");
    QTest::addColumn<int>("keyCount");
    QTest::newRow("tracks that are scanned") << 300 << 32;
    QTest::newRow("tracks just long enough to be searched") << 300 << 33;
    QTest::newRow("long tracks") << 50 << 3000;
    QTest::newRow("two keys") << 300 << 2;
    QTest::newRow("one key") << 300 << 1;
}

void KernelsTest::poses()
{
    QFETCH(int, nodeCount);
    QFETCH(int, keyCount);

    // Uneven key times with repeats, on whole numbers, so that a time can fall on keys.
    const auto make = [=] {
        return Workloads::MakeSkeleton(static_cast<std::size_t>(nodeCount), static_cast<std::size_t>(keyCount), 0.0f, 7);
    };
    const auto ours = make();
    const auto naive = make();
    const float length = ours->animations[0]->duration;

    Random random(31);
    std::vector<float> times = {-1.0f, 0.0f, length, length * 2.0f, std::nanf(""), INFINITY, -INFINITY};
    for (int i = 0; i < 100; ++i) {
        times.push_back(random.Between(0.0f, length));
        times.push_back(std::floor(times.back()));
    }
    for (const float time : times) {
        ours->CalculateAnimation(0, time);
        Naive::CalculateAnimation(*naive, *naive->animations[0], time);
        for (std::size_t i = 0; i < ours->nodes.size(); ++i) {
            const Node& a = *ours->nodes[i];
            const Node& b = *naive->nodes[i];
            QCOMPARE(FirstDifference(&a.localTransform, &b.localTransform, 1), -1);
            QCOMPARE(FirstDifference(&a.meshTransform, &b.meshTransform, 1), -1);
            QCOMPARE(FirstDifference(&a.skinTransform, &b.skinTransform, 1), -1);
            QCOMPARE(FirstDifference(&a.skinTransformInverse, &b.skinTransformInverse, 1), -1);
        }
    }
}

QTEST_APPLESS_MAIN(KernelsTest)
#include "kernels_test.moc"
