#include "benchmarks/NaiveSkin.h"
#include "benchmarks/Workloads.h"
#include "tests/skin/SkinFixtures.h"

#include <algorithm>

// The library's loops against their plain definitions: the same bits, or both
// not a number (which bits a NaN has depends on the order of operands that the
// compiler picked).

using namespace SkinAnimation;
using Workloads::Random;

namespace {

template <typename Record>
bool Same(const Record* a, const Record* b, std::size_t count = 1)
{
    const auto* const x = reinterpret_cast<const float*>(a);
    const auto* const y = reinterpret_cast<const float*>(b);
    return std::equal(x, x + count * sizeof(Record) / sizeof(float), y, [](float p, float q) {
        return std::memcmp(&p, &q, sizeof p) == 0 || (std::isnan(p) && std::isnan(q));
    });
}

template <typename Record>
void MakeOdd(Record& record, Random& random)
{
    auto* const values = reinterpret_cast<float*>(&record);
    // NOLINTNEXTLINE(bugprone-sizeof-expression): a record may be one float
    std::generate_n(values, sizeof(Record) / sizeof(float), [&random] { return Workloads::OddFloat(random); });
}

} // namespace

class KernelsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void Matrices()
    {
        Random random(11);
        for (int round = 0; round < 200000; ++round) {
            Matrix a = Workloads::RandomTransform(random);
            Matrix b = Workloads::RandomTransform(random);
            if (round % 2 != 0) {
                MakeOdd(a, random);
                MakeOdd(b, random);
            }
            if (round % 16 == 0) std::copy_n(b.m, 4, b.m + 4); // two equal rows: singular, or nearly so by rounding

            Matrix ours, naive;
            Multiply(ours, a, b);
            Naive::Multiply(naive, a, b);
            QVERIFY(Same(&ours, &naive));
            ours = naive = a;
            QCOMPARE(Inverse(ours, b), Naive::Inverse(naive, b));
            QVERIFY(Same(&ours, &naive));
        }
    }

    void Skinning_data()
    {
        QTest::addColumn<int>("boneCount");
        QTest::addColumn<int>("vertexCount");
        QTest::addColumn<bool>("odd");
        QTest::newRow("a large skin") << 60 << 100000 << false;
        QTest::newRow("a large skin, odd values everywhere") << 60 << 100000 << true;
        QTest::newRow("more bones than the stack has room for") << 1000 << 5000 << true;
        QTest::newRow("far fewer vertices than bones") << 1000 << 24 << true;
    }

    void Skinning()
    {
        QFETCH(int, boneCount);
        QFETCH(int, vertexCount);
        QFETCH(bool, odd);
        Random random(21);
        const auto scene = Workloads::MakeSkeleton(std::size_t(boneCount), 2, 40.0f, 5);
        Geometry& ours = Workloads::AddSkin(*scene, std::size_t(vertexCount), Workloads::Influences::Random, 6);
        scene->CalculateAnimation(0, 25.0f);
        // Odd values break the skin in every way that is not an index error.
        for (std::size_t i = 0; odd && i < scene->nodes.size(); i += 4) {
            MakeOdd(scene->nodes[i]->skinTransform, random);
            MakeOdd(scene->nodes[i]->skinTransformInverse, random);
        }
        for (std::size_t i = 0; odd && i < ours.vertices.size(); ++i) {
            MakeOdd(ours.vertices[i].position, random);
            MakeOdd(ours.vertices[i].normal, random);
            MakeOdd(ours.vertices[i].weights[random.Below(4)], random);
        }
        Geometry naive = ours;

        scene->offset = {0.1f, -2.0f, 1e6f};
        for (const Vec3& scale : {Vec3{1.0f, 1.0f, 1.0f}, Vec3{-0.5f, 3.0f, 0.0f}}) {
            scene->scale = scale;
            Naive::UpdateMesh(naive, *scene->root, scale, scene->offset, scene->nodes);
            ours.UpdateMesh(scene->root, scale, scene->offset, scene->nodes);
            QVERIFY(Same(ours.meshVertices.data(), naive.meshVertices.data(), naive.meshVertices.size()));

            std::vector<Vec3> normals(scene->root->normalCount, Vec3{});
            Naive::CollectNormals(naive, normals);
            Naive::NormalizeAll(normals);
            naive.SetNormals(normals);
            RecordingBuilder builder;
            scene->CreateMeshes(builder);
            QVERIFY(Same(ours.meshVertices.data(), naive.meshVertices.data(), naive.meshVertices.size()));
        }
    }

    void Poses_data()
    {
        QTest::addColumn<int>("keyCount");
        for (const int count : {32, 33, 1000})
            QTest::newRow(qPrintable(QStringLiteral("tracks of %1 keys").arg(count))) << count;
    }

    void Poses()
    {
        QFETCH(int, keyCount);
        // Uneven key times with repeats, on whole numbers, so that a time can fall on keys.
        const auto ours = Workloads::MakeSkeleton(100, std::size_t(keyCount), 0.0f, 7);
        const auto naive = Workloads::MakeSkeleton(100, std::size_t(keyCount), 0.0f, 7);
        const float length = ours->animations[0]->duration;

        Random random(31);
        auto& tracks = ours->animations[0]->layers[0].tracks;
        for (std::size_t i = 0; i < tracks.size(); ++i) {
            for (KeyFrame& key : tracks[i].keys) { // with zeros of both signs, and what is not finite
                const std::uint32_t part = random.Below(i % 2 != 0 ? 12 : 1000);
                if (part == 0) MakeOdd(key.translation, random);
                if (part == 1) MakeOdd(key.rotation, random);
                if (part == 2) MakeOdd(key.scale, random);
                if (part == 3) key.scale = key.translation = {-0.0f, 0.0f, -0.0f};
            }
            naive->animations[0]->layers[0].tracks[i].keys = tracks[i].keys;
        }
        std::vector<float> times = {-1.0f, 0.0f, length, length * 2.0f, kNaN, kInfinity, -kInfinity};
        for (int i = 0; i < 100; ++i) {
            times.push_back(random.Between(0.0f, length));
            times.push_back(std::floor(times.back()));
        }
        for (const float time : times) {
            ours->CalculateAnimation(0, time);
            Naive::CalculateAnimation(*naive, *naive->animations[0], time);
            for (std::size_t i = 0; i < ours->nodes.size(); ++i)
                for (const auto matrix : {&Node::localTransform, &Node::meshTransform, &Node::skinTransform,
                                          &Node::skinTransformInverse})
                    QVERIFY(Same(&(ours->nodes[i]->*matrix), &(naive->nodes[i]->*matrix)));
        }
    }
};

QTEST_APPLESS_MAIN(KernelsTest)
#include "kernels_test.moc"
