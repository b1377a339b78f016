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

/// The keys of a track as "time:x time:x", x being the translation's.
QString Keys(const NodeTrack& track)
{
    QStringList texts;
    for (const KeyFrame& key : track.keys)
        texts << Floats(key.time) + QLatin1Char(':') + Floats(key.translation.x);
    return texts.join(QLatin1Char(' '));
}

/// Cuts [start, end] out of the scene's first animation.
const Animation& Clip(Scene& scene, float start, float end)
{
    scene.AppendClippedAnimation(0, QStringLiteral("clip"), start, end);
    return *scene.animations.back();
}

} // namespace

class AnimationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void NewNodeStandsAtItsOrigin()
    {
        Scene scene;
        Node* const root = AddNode(scene, "root", nullptr, Translation(0, 4, 0));
        const Node& child = *AddNode(scene, "child", root, Cycle() * Translation(1, 2, 4), Scaling(2, 4, 8));
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
        QCOMPARE(node.meshTransform, Scaling(2, 2, 2) * node.globalTransform);
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
        row("between two keys", {1, 5, 6}, 2, 2.5f);
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
        Node* const child = AddNode(scene, "no keys", root, Cycle() * Translation(0, 1, 0), Scaling(2, 4, 8));
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

    void Cutting_data()
    {
        AnswerColumns();
        // Keys at `times` are translated by 0, 100, 200, ...
        const auto row = [](const char* name, const QVector<float>& times, float start, float end, const char* expected,
                            float duration) {
            Scene scene;
            std::vector<KeyFrame> source;
            for (const float time : times)
                source.push_back(Key(time, 100.0f * float(source.size())));
            AddAnimation(scene, {{nullptr, source}})->layers.front().duration = 77;
            const Animation& clip = Clip(scene, start, end);
            const AnimationLayer& layer = clip.layers.front();
            Row(name, (layer.tracks.empty() ? "dropped" : Keys(layer.tracks.front())) + ", " + Floats(layer.duration)
                + ", " + Floats(clip.duration), QStringLiteral("%1, %2, %2").arg(expected).arg(double(duration)));
        };
        row("both boundaries between the middle two", {0, 4, 12, 24}, 6, 10, "0:125 4:175", 4);
        row("both boundaries on inner keys: nothing added", {0, 5, 10, 15}, 5, 10, "0:100 5:200", 5);
        row("wider than the track: no keys at the boundaries", {4, 8}, -2, 20, "6:0 10:100", 10);
        row("wholly after the last key", {0, 4}, 5, 9, "", 0);
        row("wholly before the first key", {4, 8}, 0, 3, "", 0);
        row("ends on the first key", {4, 8}, 0, 4, "4:0", 4);
        row("a moment between two keys does not move", {0, 8}, 2, 2, "dropped", 0);
        row("no keys", {}, 0, 8, "", 0);
        row("two keys at the start's time are both kept", {0, 4, 4, 8}, 4, 8, "0:100 0:200 4:300", 4);
        row("two keys at the end's time are both kept", {0, 4, 4, 8}, 0, 4, "0:0 4:100 4:200", 4);
        row("start after end, between two keys", {0, 10}, 5, 2, "0:50 -3:20", 0);
        row("start after end, with a key between them", {0, 4, 8}, 6, 2, "-4:50", 0);
        row("start is no number: only the end is cut", {0, 8}, kNaN, 4, "nan:50", 0);
        row("end is no number: nothing is cut off", {0, 8}, 4, kNaN, "0:50 4:100", 4);
    }
    void Cutting() { CompareAnswer(); }

    void TracksThatDoNotMove_data()
    {
        AnswerColumns();
        const KeyFrame still{0, {0, 2, 3}, {0.1f, 0.2f, 0.3f, 0.4f}, {5, 6, 7}};
        const auto row = [](const char* name, std::vector<KeyFrame> keys, bool kept) {
            for (std::size_t i = 0; i < keys.size(); ++i)
                keys[i].time = float(i);
            Scene scene;
            AddAnimation(scene, {{nullptr, keys}});
            Row(name, QString::number(Clip(scene, 0, 100).layers.front().tracks.size()), QString::number(kept));
        };
        row("all alike", {still, still, still}, false);
        for (std::size_t field = 1; field <= 10; ++field) {
            std::vector<float> values = ValuesOf(still);
            values[field] = std::nextafter(values[field], 100.0f);
            KeyFrame moved;
            std::memcpy(&moved, values.data(), sizeof moved);
            row(qPrintable(QStringLiteral("value %1 there and back").arg(field)), {still, moved, still}, true);
        }
        KeyFrame odd = still;
        odd.translation.x = -0.0f;
        row("minus zero is zero", {still, still, odd}, false);
        odd.translation.x = kNaN;
        row("not a number is never alike, at the end neither", {still, still, odd}, true);
    }
    void TracksThatDoNotMove() { CompareAnswer(); }

    void LayersAndTracksKeepTheirOrder()
    {
        Scene scene;
        Node* const a = AddNode(scene, "a");
        Node* const b = AddNode(scene, "b", a);
        const auto moving = [](Node* node, float from, float to) {
            return NodeTrack{node, {Key(from, from), Key(to, to)}};
        };
        Animation* const source = AddAnimation(scene, {});
        *source = {"walk", 1000, {{"legs", 500, {moving(b, 0, 8), moving(nullptr, 2, 6)}}, {"nothing", 500, {}},
                                  // The one that stands still is left out, and its length with it.
                                  {"arms", 500, {moving(a, 0, 5), {a, {Key(0, 9), Key(50, 9)}}, {a, {Key(3, 3)}}}}}};

        const Animation& clip = Clip(scene, 2, 50);
        QString described = clip.name + QLatin1Char(' ') + Floats(clip.duration);
        for (const AnimationLayer& layer : clip.layers) {
            described += "; " + layer.name + QLatin1Char(' ') + Floats(layer.duration);
            for (const NodeTrack& track : layer.tracks)
                described += "; " + (track.node ? track.node->name : "nobody") + QLatin1Char(' ') + Keys(track);
        }
        QCOMPARE(described, QStringLiteral("clip 6; legs 6; b 0:2 6:8; nobody 0:2 4:6; nothing 0; "
                                           "arms 3; a 0:2 3:5; a 1:3"));
        QCOMPARE(Keys(source->layers[0].tracks[0]), QStringLiteral("0:0 8:8"));
    }
};

QTEST_APPLESS_MAIN(AnimationTest)
#include "animation_test.moc"
