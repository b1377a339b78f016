#include "tests/foundation/Exact.h"
#include "tests/skin/SkinFixtures.h"

#include <limits>

using namespace SkinAnimation;

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

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

class ClipTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void Cutting_data()
    {
        AnswerColumns();
        // Keys at `times` are translated by 0, 100, 200, ...
        const auto row = [](const char* name, const QVector<float>& times, float start, float end, const char* expected,
                            float duration) {
            Scene scene;
            std::vector<KeyFrame> source;
            for (const float time : times)
                source.push_back(Key(time, {100.0f * float(source.size()), 0, 0}));
            AddAnimation(scene, {Track(nullptr, source)})->layers.front().duration = 77;
            const Animation& clip = Clip(scene, start, end);
            const AnimationLayer& layer = clip.layers.front();
            QTest::newRow(name) << (layer.tracks.empty() ? "dropped" : Keys(layer.tracks.front())) + ", "
                    + Floats(layer.duration) + ", " + Floats(clip.duration)
                << QStringLiteral("%1, %2, %2").arg(expected).arg(double(duration));
        };
        row("both boundaries between two keys", {0, 8}, 2, 4, "0:25 2:50", 2);
        row("both boundaries between the middle two", {0, 8, 16, 24}, 10, 12, "0:125 2:150", 2);
        row("both boundaries on keys: copied, nothing added", {0, 5, 10}, 0, 10, "0:0 5:100 10:200", 10);
        row("both boundaries on inner keys", {0, 5, 10, 15}, 5, 10, "0:100 5:200", 5);
        row("a key between the boundaries", {0, 4, 8}, 2, 6, "0:50 2:100 4:150", 4);
        row("ends after the last key: no end key", {0, 4, 8}, 4, 20, "0:100 4:200", 4);
        row("starts before the first key: no start key", {4, 8}, 2, 8, "2:0 6:100", 6);
        row("starts before the first key, ends between", {4, 8}, 2, 6, "2:0 4:50", 4);
        row("wider than the track", {4, 8}, -2, 20, "6:0 10:100", 10);
        row("wholly after the last key", {0, 4}, 5, 9, "", 0);
        row("wholly before the first key", {4, 8}, 0, 3, "", 0);
        row("ends on the first key", {4, 8}, 0, 4, "4:0", 4);
        row("starts on the last key", {0, 4}, 4, 8, "0:100", 0);
        row("a moment between two keys does not move", {0, 8}, 2, 2, "dropped", 0);
        row("a moment on a key", {0, 4, 8}, 4, 4, "0:100", 0);
        row("no keys", {}, 0, 8, "", 0);
        row("one key within", {4}, 2, 8, "2:0", 2);
        row("one key before", {4}, 5, 8, "", 0);
        row("two keys at the start's time are both kept", {0, 4, 4, 8}, 4, 8, "0:100 0:200 4:300", 4);
        row("two keys at the end's time are both kept", {0, 4, 4, 8}, 0, 4, "0:0 4:100 4:200", 4);
        row("times below zero", {-10, -2, 6}, -6, 2, "0:50 4:100 8:150", 8);
        row("start after end, between two keys", {0, 10}, 5, 2, "0:50 -3:20", 0);
        row("start after end, with a key between them", {0, 4, 8}, 6, 2, "-4:50", 0);
        row("start after end, both on keys", {0, 4, 8}, 8, 4, "", 0);
        row("start after end, the first key between them", {4, 8}, 6, 2, "", 0);
        row("start is no number: only the end is cut", {0, 8}, kNaN, 4, "nan:50", 0);
        row("end is no number: nothing is cut off", {0, 8}, 4, kNaN, "0:50 4:100", 4);
    }

    void Cutting() { CompareAnswer(); }

    void BoundaryKeysAreInterpolatedInEveryComponent()
    {
        const float half = std::sqrt(0.5f);
        Scene scene;
        AddAnimation(scene, {Track(nullptr, {Key(0, {0, 10, 20}, {0, 0, 0, 1}, {1, 2, 3}),
                                             Key(8, {8, 18, 36}, {0, 0, half, half}, {5, 10, 19})})});
        const std::vector<KeyFrame>& keys = Clip(scene, 2, 6).layers.front().tracks.front().keys;
        const double degree = std::acos(-1.0) / 180;
        for (std::size_t i = 0; i < 2; ++i) {
            QCOMPARE(Floats(keys[i].time), i == 0 ? QStringLiteral("0") : QStringLiteral("4"));
            QCOMPARE(Floats(keys[i].translation), i == 0 ? QStringLiteral("2, 12, 24") : QStringLiteral("6, 16, 32"));
            QCOMPARE(Floats(keys[i].scale), i == 0 ? QStringLiteral("2, 4, 7") : QStringLiteral("4, 8, 15"));
            const double turn = (i == 0 ? 11.25 : 33.75) * degree;
            const Quaternion turned{0, 0, float(std::sin(turn)), float(std::cos(turn))};
            QCOMPARE(Rounded(keys[i].rotation), Rounded(turned));
        }
    }

    void TracksThatDoNotMove_data()
    {
        AnswerColumns();
        const KeyFrame still = Key(0, {0, 2, 3}, {0.1f, 0.2f, 0.3f, 0.4f}, {5, 6, 7});
        const auto row = [](const char* name, std::vector<KeyFrame> keys, bool kept) {
            Scene scene;
            for (std::size_t i = 0; i < keys.size(); ++i)
                keys[i].time = float(i);
            AddAnimation(scene, {Track(nullptr, keys)});
            const Animation& clip = Clip(scene, 0, 100);
            QTest::newRow(name)
                << QStringLiteral("%1 kept, %2").arg(clip.layers.front().tracks.size()).arg(double(clip.duration))
                << QStringLiteral("%1 kept, %2").arg(kept).arg(kept ? keys.size() - 1 : 0);
        };
        row("three alike", {still, still, still}, false);
        row("two alike", {still, still}, false);
        row("one", {still}, true);

        for (std::size_t field = 1; field <= 10; ++field) {
            std::vector<float> values = ValuesOf(still);
            KeyFrame moved;
            values[field] = std::nextafter(values[field], 100.0f);
            std::memcpy(&moved, values.data(), sizeof moved);
            row(qPrintable(QStringLiteral("value %1 at the end").arg(field)), {still, still, moved}, true);
            row(qPrintable(QStringLiteral("value %1 there and back").arg(field)), {still, moved, still}, true);
        }
        KeyFrame minus = still;
        minus.translation.x = -0.0f;
        row("minus zero is zero", {still, minus}, false);
        minus.translation.x = kNaN;
        row("not a number is never alike", {minus, minus}, true);
    }

    void TracksThatDoNotMove() { CompareAnswer(); }

    void LayersAndTracksKeepTheirOrder()
    {
        Scene scene;
        Node* const a = AddNode(scene, "a");
        Node* const b = AddNode(scene, "b", a);
        const KeyFrame still = Key(0, {9, 9, 9});
        KeyFrame later = still;
        later.time = 50;
        Animation* const source = AddAnimation(scene, {});
        source->name = QStringLiteral("walk");
        source->duration = 1000;
        const auto moving = [](Node* node, float from, float to) {
            return Track(node, {Key(from, {from, 0, 0}), Key(to, {to, 0, 0})});
        };
        source->layers = {{"legs", 500, {moving(b, 0, 8),
                                         Track(a, {still, later}), // does not move: its length does not count
                                         Track(a, {Key(3, {3, 0, 0})}), moving(nullptr, 2, 6)}},
                          {"nothing", 500, {}},
                          {"arms", 500, {moving(a, 0, 5)}}};

        scene.AppendClippedAnimation(0, QStringLiteral("step"), 2, 50);
        QCOMPARE(scene.animations.size(), std::size_t(2));
        const Animation& clip = *scene.animations[1];
        QCOMPARE(clip.name, QStringLiteral("step"));
        QCOMPARE(clip.duration, 6.0f);
        QStringList described;
        for (const AnimationLayer& layer : clip.layers) {
            described << layer.name + QLatin1Char(' ') + Floats(layer.duration);
            for (const NodeTrack& track : layer.tracks)
                described << (track.node ? track.node->name : QStringLiteral("-")) + QLatin1Char(' ') + Keys(track);
        }
        QCOMPARE(described.join(QStringLiteral("; ")),
                 QStringLiteral("legs 6; b 0:2 6:8; a 1:3; - 0:2 4:6; nothing 0; arms 3; a 0:2 3:5"));

        QCOMPARE(source->name, QStringLiteral("walk"));
        QCOMPARE(source->layers[0].tracks.size(), std::size_t(4));
        QCOMPARE(Keys(source->layers[0].tracks[0]), QStringLiteral("0:0 8:8"));
        QCOMPARE(source->duration, 1000.0f);

        scene.AppendClippedAnimation(1, QStringLiteral("half a step"), 0, 3); // a clip of a clip
        QCOMPARE(Keys(scene.animations[2]->layers[0].tracks[0]), QStringLiteral("0:2 3:5"));
        source->layers.clear();
        QCOMPARE(int(Clip(scene, 0, 1).layers.size()), 0);
    }

    void NoSuchAnimation()
    {
        Scene scene;
        AddAnimation(scene, {});
        for (const int index : {-1, 1, std::numeric_limits<int>::min()})
            QCOMPARE(Refusal([&] { scene.AppendClippedAnimation(index, QString(), 0, 1); }),
                     QStringLiteral("Invalid parameter 'animIndex' passed to method 'Scene::AppendClippedAnimation':\n"
                                    "The index is out of range"));
        QCOMPARE(scene.animations.size(), std::size_t(1));
    }
};

QTEST_APPLESS_MAIN(ClipTest)
#include "clip_test.moc"
