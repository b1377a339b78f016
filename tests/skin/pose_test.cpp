#include "tests/foundation/Exact.h"
#include "tests/skin/SkinFixtures.h"

#include <cstring>
#include <limits>
#include <new>
#include <numeric>

using namespace SkinAnimation;

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
const Matrix kFlat = Scaling(1, 1, 0); // has no inverse

/// What posing writes.
QString CurrentPose(const Scene& scene)
{
    QStringList texts;
    for (const Node* node : scene.nodes)
        for (const Matrix* matrix : {&node->localTransform, &node->globalTransform, &node->meshTransform,
                                     &node->skinTransform, &node->skinTransformInverse})
            texts << Floats(*matrix);
    return texts.join(QStringLiteral("; "));
}

/// The local transform that a track gives its node at `time`.
Matrix LocalAt(const std::vector<KeyFrame>& keys, float time)
{
    Scene scene;
    Node* const node = AddNode(scene, "node");
    AddAnimation(scene, {Track(node, keys)});
    scene.CalculateAnimation(0, time);
    return node->localTransform;
}

/// Keys at `times`, the n-th translated by 10·n along x.
std::vector<KeyFrame> KeysAt(const QVector<float>& times)
{
    std::vector<KeyFrame> keys;
    for (const float time : times)
        keys.push_back(Key(time, {10.0f * float(keys.size()), 0, 0}));
    return keys;
}

/// The rotation between two keys, read from the key that a clip inserts.
Quaternion Between(const Quaternion& q0, const Quaternion& q1, float factor)
{
    Scene scene;
    AddAnimation(scene, {Track(nullptr, {Key(0, {0, 0, 0}, q0), Key(1, {1, 0, 0}, q1)})});
    scene.AppendClippedAnimation(0, QString(), factor, 1);
    return scene.animations.back()->layers.front().tracks.front().keys.front().rotation;
}

/// A turn about the x, y or z axis (0, 1, 2).
Quaternion TurnAbout(int axis, double degrees)
{
    const double half = degrees * std::acos(-1.0) / 360.0;
    float q[3] = {0, 0, 0};
    q[axis] = float(std::sin(half));
    return {q[0], q[1], q[2], float(std::cos(half))};
}

} // namespace

class PoseTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void Defaults()
    {
        const Scene scene;
        QCOMPARE(Floats(scene.scale), QStringLiteral("1, 1, 1"));
        QCOMPARE(Floats(scene.offset), QStringLiteral("0, 0, 0"));
        QCOMPARE(scene.boundingBox, TBBox<float>());
        QVERIFY(!scene.root && scene.nodes.empty() && scene.animations.empty());

        const Geometry geometry(QStringLiteral("name"), true);
        QCOMPARE(geometry.name, QStringLiteral("name"));
        QVERIFY(geometry.skinned && !Geometry(QString(), false).skinned && geometry.visible);
        QVERIFY(geometry.vertices.empty() && geometry.indices.empty() && geometry.normalIndices.empty()
                && geometry.meshVertices.empty());
    }

    void NewVertexClearsNothingButItsInfluences()
    {
        // Called through a volatile pointer: what stood there before must not be optimised away.
        SkinVertex* (*volatile construct)(void*) = [](void* place) { return new (place) SkinVertex; };
        alignas(SkinVertex) unsigned char bytes[sizeof(SkinVertex)];
        std::memset(bytes, 0xAB, sizeof bytes);
        construct(bytes);
        for (std::size_t i = 0; i < sizeof bytes; ++i)
            QCOMPARE(int(bytes[i]), i < sizeof(MeshVertex) ? 0xAB : 0);
    }

    void NewNodeStandsAtItsOrigin()
    {
        Scene scene;
        Node* const root = AddNode(scene, "root", nullptr, Translation(0, 4, 0));
        Node* const child = AddNode(scene, "child", root, Cycle() * Translation(1, 2, 4), Scaling(2, 4, 8));
        QCOMPARE(root->localTransform, Translation(0, 4, 0));
        QCOMPARE(child->name, QStringLiteral("child"));
        QCOMPARE(child->originGlobalTransform, Cycle() * Translation(1, 2, 4));
        QCOMPARE(child->originGlobalInverse, Translation(-1, -2, -4) * Cycle() * Cycle());
        QCOMPARE(child->globalTransform, child->originGlobalTransform);
        QCOMPARE(child->geometryTransform, Scaling(2, 4, 8));
        QCOMPARE(child->bindTransform, Scaling(2, 4, 8) * Cycle() * Translation(1, 2, 4));
        QCOMPARE(child->meshTransform, child->bindTransform);
        QCOMPARE(child->localTransform, Cycle() * Translation(1, -2, 4));
        QCOMPARE(child->skinTransform, Matrix());
        QCOMPARE(child->skinTransformInverse, Matrix());
        const Node unlisted(QString(), Matrix(), Matrix(), child); // finding its place is the loader's work
        QVERIFY(child->parent == root && child->children.empty() && child->geometries.empty() && !child->normalCount);
    }

    void SingularOriginHasNoInverse()
    {
        Scene scene;
        Node* const root = AddNode(scene, "flat", nullptr, kFlat);
        Node* const child = AddNode(scene, "child", root, Translation(1, 2, 3));
        QCOMPARE(root->originGlobalInverse, Matrix());
        QCOMPARE(child->localTransform, Translation(1, 2, 3));
        child->SetOriginGlobalTransform(kFlat);
        QCOMPARE(child->originGlobalInverse, Translation(-1, -2, -3)); // as it was
    }

    void NewRestPoseLeavesTheCurrentPoseAlone()
    {
        Scene scene;
        Node& node = *AddNode(scene, "node", nullptr, Translation(1, 2, 3), Scaling(2, 2, 2));
        const QString before = CurrentPose(scene);
        node.SetOriginGlobalTransform(Translation(0, 8, 0));
        QCOMPARE(CurrentPose(scene), before);
        QCOMPARE(node.originGlobalTransform, Translation(0, 8, 0));
        QCOMPARE(node.originGlobalInverse, Translation(0, -8, 0));
        QCOMPARE(node.bindTransform, Scaling(2, 2, 2) * Translation(0, 8, 0));

        node.SetOriginGlobalTransform(node.originGlobalInverse); // its own
        QCOMPARE(node.originGlobalTransform, Translation(0, -8, 0));
        QCOMPARE(node.originGlobalInverse, Translation(0, 8, 0));
        QCOMPARE(node.bindTransform, Scaling(2, 2, 2) * Translation(0, -8, 0));
    }

    void NodeIndex()
    {
        Scene scene;
        QCOMPARE(scene.GetNodeIndex(QString()), -1);
        Node* const root = AddNode(scene, "root");
        AddNode(scene, "arm", root);
        AddNode(scene, "arm", root);
        QCOMPARE(scene.GetNodeIndex(QStringLiteral("root")), 0);
        QCOMPARE(scene.GetNodeIndex(QStringLiteral("arm")), 1);
        QCOMPARE(scene.GetNodeIndex(QStringLiteral("Arm")), -1);
        QCOMPARE(scene.GetNodeIndex(QStringLiteral("ar")), -1);
    }

    void Sampling_data()
    {
        AnswerColumns();
        const auto row = [](const char* name, const QVector<float>& times, float time, float expected) {
            QTest::newRow(name) << Floats(LocalAt(KeysAt(times), time)) << Floats(Translation(expected, 0, 0));
        };
        row("on the first key", {1, 2}, 1.0f, 0.0f);
        row("between two keys", {1, 5, 6}, 2.0f, 2.5f);
        row("on a key in the middle", {0, 1, 2}, 1.0f, 10.0f);
        row("on the last key", {0, 1}, 1.0f, 10.0f);
        row("long before", {0, 1, 2}, -kInfinity, 0.0f);
        row("long after", {0, 1, 2}, kInfinity, 20.0f);
        row("no time at all: the last pair's first", {0, 1, 2}, kNaN, 10.0f);
        row("one key, before it", {1}, 0.0f, 0.0f);
        row("one key, no time at all", {1}, kNaN, 0.0f);
        row("two keys at one time: on them the later", {0, 1, 1, 2}, 1.0f, 20.0f);
        row("two keys at one time: before them the earlier", {0, 1, 1, 2}, 0.5f, 5.0f);
        row("two keys at one time: after them the later", {0, 1, 1, 2}, 1.5f, 25.0f);
        row("two first keys at one time: on them the first", {1, 1, 2}, 1.0f, 0.0f);
        row("two last keys at one time: on them the last", {0, 1, 1}, 1.0f, 20.0f);
        QVector<float> many(40);
        std::iota(many.begin(), many.end(), 0.0f);
        row("many keys, no time at all", many, kNaN, 380.0f);
    }

    void Sampling() { CompareAnswer(); }

    void EveryComponentIsInterpolated()
    {
        const Quaternion none{0, 0, 0, 1};
        QCOMPARE(Floats(LocalAt({Key(0, {0, 10, 20}, none, {1, 2, 3}), Key(4, {4, 18, 36}, none, {5, 10, 15})}, 1)),
                 QStringLiteral("2, 0, 0, 0, 0, 4, 0, 0, 0, 0, 6, 0, 1, 12, 24, 1"));
    }

    void ScaleThenRotationThenTranslation()
    {
        // Not a unit quaternion: the formula is used as it stands.
        QCOMPARE(Floats(LocalAt({Key(0, {5, 6, 7}, {1, 2, 3, 4}, {1, 10, 100})}, 0)),
                 QStringLiteral("-25, 28, -10, 0, -200, -190, 200, 0, 2200, 400, -900, 0, 5, 6, 7, 1"));
        for (int axis = 0; axis < 3; ++axis) {
            const Quaternion quarter = TurnAbout(axis, 90);
            Vec3 start{axis == 2 ? 1.0f : 0.0f, axis == 0 ? 1.0f : 0.0f, axis == 1 ? 1.0f : 0.0f};
            const Vec3 end{start.z, start.x, start.y}; // about x from y to z, and so on round
            TransformPoint(start, LocalAt({Key(0, {0, 0, 0}, quarter)}, 0));
            QCOMPARE(Rounded(start), Rounded(end));
        }
        Vec3 turned{1, 0, 0};
        TransformPoint(turned, LocalAt({Key(0, {0, 0, 0}), Key(1, {0, 0, 0}, TurnAbout(2, 120))}, 0.25f));
        QCOMPARE(Rounded(turned), QStringLiteral("0.86603, 0.5, 0"));
    }

    void Rotations_data()
    {
        AnswerColumns();
        const auto turn = [](const char* name, double from, double to, float factor, double expected) {
            QStringList found, wanted;
            for (int axis = 0; axis < 3; ++axis) {
                found << Rounded(Between(TurnAbout(axis, from), TurnAbout(axis, to), factor));
                wanted << Rounded(TurnAbout(axis, expected));
            }
            QTest::newRow(name) << found.join(" / ") << wanted.join(" / ");
        };
        turn("a third of the way", 10, 100, 1.0f / 3, 40);
        turn("three quarters of a small arc", 0, 8, 0.75f, 6);
        turn("the other way round where that is shorter", 0, 270, 0.25f, -22.5);
        turn("a turn written as its opposite", 20, 60 + 360, 0.5f, 40);
        turn("half a turn", 0, 180, 0.5f, 90);
        turn("nearly equal, one written as its opposite", 30, 390.1, 0.5f, 30.05);

        const auto row = [](const char* name, const Quaternion& q0, const Quaternion& q1, const char* expected) {
            QTest::newRow(name) << Rounded(Between(q0, q1, 0.25f)) << QString::fromLatin1(expected);
        };
        row("longer than one: linear, not normalised", {0, 0, 0, 2}, {0, 2, 0, 2}, "0, 0.5, 0, 2");
        row("shorter than one: an arc, not normalised", {0, 0, 0, 0.5f}, {0.5f, 0, 0, 0}, "0.19134, 0, 0, 0.46194");
        // acos(1/2) is 60 degrees: (sin 45 + sin 15 / 2) / sin 60
        row("the lengths count in the angle", {0, 0, 0, 1}, {0, 0, 0, 0.5f}, "0, 0, 0, 0.96593");
    }
    void Rotations() { CompareAnswer(); }

    void NearlyEqualRotationsAreBlendedLinearly()
    {
        // In steps of a float's last bit below 1, the limit of 1e-5 lies between 167 and 168. On the arc the
        // half-way rotation keeps its length; the straight blend is shorter by some twenty such steps.
        for (const int steps : {0, 1, 167, 168}) {
            const float w = 1.0f - float(steps) / (1 << 24);
            const Quaternion near{0, 0, float(std::sqrt(1.0 - double(w) * double(w))), w};
            const Quaternion found = Between({0, 0, 0, 1}, near, 0.5f);
            QCOMPARE(Floats(found) == Floats(Quaternion{0, 0, near.z * 0.5f, 0.5f + w * 0.5f}), steps < 168);
            QVERIFY(steps < 168 || std::fabs(std::hypot(double(found.z), double(found.w)) - 1) < 5e-7);
        }
    }

    void NoSuchAnimation_data()
    {
        QTest::addColumn<int>("index");
        QTest::newRow("below zero") << -1;
        QTest::newRow("one too high") << 1;
        QTest::newRow("far too high") << std::numeric_limits<int>::max();
    }
    void NoSuchAnimation()
    {
        QFETCH(int, index);
        Scene scene;
        Node* const node = AddNode(scene, "node");
        node->localTransform = Translation(1, 2, 3); // anything that is recomputed would show
        AddAnimation(scene, {Track(node, KeysAt({0}))});
        const QString before = CurrentPose(scene);
        QCOMPARE(Refusal([&] { scene.CalculateAnimation(index, 0); }),
                 QStringLiteral("Invalid parameter 'animIndex' passed to method 'Scene::CalculateAnimation':\n"
                                "Invalid animation index"));
        QCOMPARE(CurrentPose(scene), before);
    }

    void WithoutLayersNothingChanges()
    {
        Scene scene;
        Node* const node = AddNode(scene, "node");
        AddAnimation(scene, {})->layers.clear();
        node->localTransform = Translation(1, 2, 3);
        const QString before = CurrentPose(scene);
        scene.CalculateAnimation(0, 0);
        QCOMPARE(CurrentPose(scene), before);
    }

    void AnEmptyLayerRecomputesEveryNode()
    {
        Scene scene;
        Node* const root = AddNode(scene, "root", nullptr, Translation(1, 0, 0), Scaling(3, 3, 3));
        Node* const child = AddNode(scene, "child", root, Cycle() * Translation(0, 1, 0), Scaling(2, 4, 8));
        AddAnimation(scene, {});
        root->localTransform = Cycle() * Translation(0, 0, 4);
        child->localTransform = Scaling(2, 1, 1) * Translation(8, 0, 0);
        scene.CalculateAnimation(0, 0);

        QCOMPARE(root->globalTransform, root->localTransform);
        const Matrix global = Scaling(2, 1, 1) * Translation(8, 0, 0) * Cycle() * Translation(0, 0, 4);
        const Matrix skin = Translation(0, -1, 0) * Cycle() * Cycle() * global;
        QCOMPARE(child->globalTransform, global);
        QCOMPARE(child->meshTransform, Scaling(2, 4, 8) * global);
        QCOMPARE(child->skinTransform, skin);
        QCOMPARE(child->skinTransform * child->skinTransformInverse, Matrix());

        root->localTransform = kFlat;
        const Matrix kept = child->skinTransformInverse;
        scene.CalculateAnimation(0, 0);
        QCOMPARE(child->skinTransform, Translation(0, -1, 0) * Cycle() * Cycle() * child->localTransform * kFlat);
        QCOMPARE(child->skinTransformInverse, kept); // a flat one has none
    }

    void WhichTracksCount()
    {
        Scene scene;
        Node* const root = AddNode(scene, "root");
        Node* const twice = AddNode(scene, "two tracks", root);
        Node* const empty = AddNode(scene, "track without keys", root);
        Node* const second = AddNode(scene, "track in the second layer", root);
        const auto at = [](Node* node, float x) { return Track(node, {Key(0, {x, 0, 0})}); };
        auto* const animation = AddAnimation(scene, {at(nullptr, 7), at(twice, 1), Track(empty, {}), at(twice, 2)});
        animation->layers.push_back({QString(), 0, {at(second, 3), at(twice, 4)}});
        empty->localTransform = second->localTransform = Translation(0, 9, 0);
        AddAnimation(scene, {at(twice, 5)});

        scene.CalculateAnimation(0, 0);
        QCOMPARE(twice->globalTransform, Translation(2, 0, 0));
        QCOMPARE(empty->globalTransform, Translation(0, 9, 0));
        QCOMPARE(second->globalTransform, Translation(0, 9, 0));
        scene.CalculateAnimation(1, 0);
        QCOMPARE(twice->globalTransform, Translation(5, 0, 0));
    }
};

QTEST_APPLESS_MAIN(PoseTest)
#include "pose_test.moc"
