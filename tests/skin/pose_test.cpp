#include "lumenta/foundation/Exceptions.h"
#include "tests/skin/SkinFixtures.h"

using namespace SkinAnimation;

namespace {

const Matrix kFlat = Scaling(1, 1, 0); // has no inverse

/// The local transform that a track gives its node at `time`.
Matrix LocalAt(const std::vector<KeyFrame>& keys, float time)
{
    Scene scene;
    Node* const node = AddNode(scene, "node");
    AddAnimation(scene, {{node, keys}});
    scene.CalculateAnimation(0, time);
    return node->localTransform;
}

/// The rotation between two keys, read from the key that a clip inserts.
Quaternion Between(const Quaternion& q0, const Quaternion& q1, float factor)
{
    Scene scene;
    AddAnimation(scene, {{nullptr, {Key(0, 0, q0), Key(1, 1, q1)}}});
    scene.AppendClippedAnimation(0, QString(), factor, 1);
    return scene.animations.back()->layers.front().tracks.front().keys.front().rotation;
}

/// The text that `call` is refused with.
template <typename Call>
QString Refusal(const Call& call)
{
    try {
        call();
    } catch (const InvalidParameterException& e) {
        return e.GetErrorText();
    }
    return QStringLiteral("not refused");
}

} // namespace

class PoseTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void NewNodeStandsAtItsOrigin()
    {
        Scene scene;
        Node* const root = AddNode(scene, "root", nullptr, Translation(0, 4, 0));
        const Node& child = *AddNode(scene, "child", root, Cycle() * Translation(1, 2, 4), Scaling(2, 4, 8));
        QCOMPARE(root->localTransform, Translation(0, 4, 0));
        QCOMPARE(child.localTransform, Cycle() * Translation(1, -2, 4));
        QCOMPARE(child.globalTransform, Cycle() * Translation(1, 2, 4));
        QCOMPARE(child.originGlobalTransform, child.globalTransform);
        QCOMPARE(child.originGlobalInverse, Translation(-1, -2, -4) * Cycle() * Cycle());
        QCOMPARE(child.bindTransform, Scaling(2, 4, 8) * Cycle() * Translation(1, 2, 4));
        QCOMPARE(child.meshTransform, child.bindTransform);
        QVERIFY(child.skinTransform == Matrix() && child.skinTransformInverse == Matrix() && !child.normalCount);
        QCOMPARE(Node(QString(), kFlat, Matrix(), nullptr).originGlobalInverse, Matrix());
    }

    void NewRestPoseLeavesTheCurrentPoseAlone()
    {
        Scene scene;
        Node& node = *AddNode(scene, "node", nullptr, Translation(1, 2, 3), Scaling(2, 2, 2));
        node.SetOriginGlobalTransform(Translation(0, 8, 0));
        node.SetOriginGlobalTransform(node.originGlobalInverse); // its own
        QCOMPARE(node.originGlobalTransform, Translation(0, -8, 0));
        QCOMPARE(node.originGlobalInverse, Translation(0, 8, 0));
        QCOMPARE(node.bindTransform, Scaling(2, 2, 2) * Translation(0, -8, 0));
        node.SetOriginGlobalTransform(kFlat);
        QCOMPARE(node.originGlobalInverse, Translation(0, 8, 0)); // as it was
        QVERIFY(node.localTransform == Translation(1, 2, 3) && node.globalTransform == Translation(1, 2, 3));
        QCOMPARE(node.meshTransform, Scaling(2, 2, 2) * Translation(1, 2, 3));
    }

    void NodeIndex()
    {
        Scene scene;
        Node* const root = AddNode(scene, "root");
        AddNode(scene, "arm", root);
        AddNode(scene, "arm", root);
        QCOMPARE(scene.GetNodeIndex("arm"), 1);
        for (const char* const unknown : {"Arm", "ar", ""})
            QCOMPARE(scene.GetNodeIndex(unknown), -1);
    }

    void Sampling_data()
    {
        AnswerColumns();
        // Keys at `times` are translated by 0, 10, 20, ...
        const auto row = [](const char* name, const QVector<float>& times, float time, float expected) {
            std::vector<KeyFrame> keys;
            for (const float each : times)
                keys.push_back(Key(each, 10.0f * float(keys.size())));
            Row(name, Floats(LocalAt(keys, time)), Floats(Translation(expected, 0, 0)));
        };
        row("before the first key", {1, 2}, -kInfinity, 0);
        row("between two keys", {1, 5, 6}, 2, 2.5f);
        row("on a key in the middle", {0, 1, 2}, 1, 10);
        row("after the last key", {0, 1}, 5, 10);
        row("no time at all: the last pair's first", {0, 1, 2}, kNaN, 10);
        row("one key, no time at all", {1}, kNaN, 0);
        row("two keys at one time: on them the later", {0, 1, 1, 2}, 1, 20);
        row("two keys at one time: before them the earlier", {0, 1, 1, 2}, 0.5f, 5);
        row("two first keys at one time: on them the first", {1, 1, 2}, 1, 0);
        row("two last keys at one time: on them the last", {0, 1, 1}, 1, 20);
    }
    void Sampling() { CompareAnswer(); }

    void ScaleThenRotationThenTranslation()
    {
        // Not a unit quaternion: the formula is used as it stands.
        QCOMPARE(Floats(LocalAt({{0, {5, 6, 7}, {1, 2, 3, 4}, {1, 10, 100}}}, 0)),
                 QStringLiteral("-25, 28, -10, 0, -200, -190, 200, 0, 2200, 400, -900, 0, 5, 6, 7, 1"));
        // Towards half a turn about z: from x to y.
        Vec3 turned{1, 0, 0};
        TransformPoint(turned, LocalAt({Key(0, 0), Key(1, 0, {0, 0, 1, 0})}, 1.0f / 6));
        QCOMPARE(Rounded(turned), QStringLiteral("0.86603, 0.5, 0"));
    }

    void RotationsTakeTheShorterArc()
    {
        // A quarter of the way to 270 degrees about z, which are 90 backwards.
        const float half = std::sqrt(0.5f);
        QCOMPARE(Rounded(Between({0, 0, 0, 1}, {0, 0, half, -half}, 0.25f)), QStringLiteral("0, 0, -0.19509, 0.98079"));
        // acos(1/2) is 60 degrees: (sin 45 + sin 15 / 2) / sin 60
        QCOMPARE(Rounded(Between({0, 0, 0, 1}, {0, 0, 0, 0.5f}, 0.25f)), QStringLiteral("0, 0, 0, 0.96593"));
    }

    void NearlyEqualRotationsAreBlendedLinearly()
    {
        // In steps of a float's last bit below 1, the limit of 1e-5 lies between 167 and 168. On the arc the
        // half-way rotation keeps its length; the straight blend is shorter by some twenty such steps.
        for (const int steps : {0, 167, 168}) {
            const float w = 1.0f - float(steps) / (1 << 24);
            const Quaternion near{0, 0, float(std::sqrt(1.0 - double(w) * double(w))), w};
            const Quaternion found = Between({0, 0, 0, 1}, near, 0.5f);
            QCOMPARE(Floats(found) == Floats(Quaternion{0, 0, near.z * 0.5f, 0.5f + w * 0.5f}), steps < 168);
            QVERIFY(steps < 168 || std::fabs(std::hypot(double(found.z), double(found.w)) - 1) < 5e-7);
        }
    }

    void NothingToPlayChangesNothing()
    {
        Scene scene;
        Node* const node = AddNode(scene, "node");
        node->localTransform = Translation(1, 2, 3); // anything that is recomputed would show
        AddAnimation(scene, {})->layers.clear();
        scene.CalculateAnimation(0, 0);
        for (const int index : {-1, 1, std::numeric_limits<int>::max()}) {
            QCOMPARE(Refusal([&] { scene.CalculateAnimation(index, 0); }),
                     QStringLiteral("Invalid parameter 'animIndex' passed to method 'Scene::CalculateAnimation':\n"
                                    "Invalid animation index"));
            QCOMPARE(Refusal([&] { scene.AppendClippedAnimation(index, QString(), 0, 1); }),
                     QStringLiteral("Invalid parameter 'animIndex' passed to method 'Scene::AppendClippedAnimation':\n"
                                    "The index is out of range"));
        }
        QCOMPARE(node->globalTransform, Matrix());
        QCOMPARE(scene.animations.size(), std::size_t(1));
    }

    void TracksOfTheFirstLayerMoveTheTree()
    {
        Scene scene;
        Node* const root = AddNode(scene, "two tracks");
        Node* const child = AddNode(scene, "track without keys", root, Cycle() * Translation(0, 1, 0), Scaling(2, 4, 8));
        const auto at = [](Node* node, float x) { return NodeTrack{node, {Key(0, x, {0.5f, 0.5f, 0.5f, 0.5f})}}; };
        auto* const animation = AddAnimation(scene, {at(nullptr, 7), at(root, 1), {child, {}}, at(root, 4)});
        animation->layers.push_back({QString(), 0, {at(child, 3), at(root, 9)}});
        child->localTransform = Scaling(2, 1, 1) * Translation(8, 0, 0);
        scene.CalculateAnimation(0, 0);

        const Matrix global = child->localTransform * Cycle() * Translation(4, 0, 0);
        QCOMPARE(root->globalTransform, Cycle() * Translation(4, 0, 0));
        QCOMPARE(child->localTransform, Scaling(2, 1, 1) * Translation(8, 0, 0));
        QCOMPARE(child->globalTransform, global);
        QCOMPARE(child->meshTransform, Scaling(2, 4, 8) * global);
        QCOMPARE(child->skinTransform, Translation(0, -1, 0) * Cycle() * Cycle() * global);
        const Matrix inverse = child->skinTransformInverse;
        QCOMPARE(child->skinTransform * inverse, Matrix());

        AddAnimation(scene, {}); // recomputes every node all the same
        root->localTransform = kFlat;
        scene.CalculateAnimation(1, 0);
        QCOMPARE(child->globalTransform, child->localTransform * kFlat);
        QCOMPARE(child->skinTransformInverse, inverse); // a flat one has none
    }
};

QTEST_APPLESS_MAIN(PoseTest)
#include "pose_test.moc"
