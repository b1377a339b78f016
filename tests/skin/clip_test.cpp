#include "tests/skin/SkinFixtures.h"

using namespace SkinAnimation;

namespace {

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
                source.push_back(Key(time, 100.0f * float(source.size())));
            AddAnimation(scene, {{nullptr, source}})->layers.front().duration = 77;
            const Animation& clip = Clip(scene, start, end);
            const AnimationLayer& layer = clip.layers.front();
            Row(name, (layer.tracks.empty() ? "dropped" : Keys(layer.tracks.front())) + ", " + Floats(layer.duration)
                + ", " + Floats(clip.duration), QStringLiteral("%1, %2, %2").arg(expected).arg(double(duration)));
        };
        row("both boundaries between the middle two", {0, 4, 12, 24}, 6, 10, "0:125 4:175", 4);
        row("both boundaries on inner keys: nothing added", {0, 5, 10, 15}, 5, 10, "0:100 5:200", 5);
        row("a key between the boundaries", {0, 4, 8}, 2, 6, "0:50 2:100 4:150", 4);
        row("wider than the track: no keys at the boundaries", {4, 8}, -2, 20, "6:0 10:100", 10);
        row("wholly after the last key", {0, 4}, 5, 9, "", 0);
        row("wholly before the first key", {4, 8}, 0, 3, "", 0);
        row("ends on the first key", {4, 8}, 0, 4, "4:0", 4);
        row("starts on the last key", {0, 4}, 4, 8, "0:100", 0);
        row("a moment between two keys does not move", {0, 8}, 2, 2, "dropped", 0);
        row("a moment on a key", {0, 4, 8}, 4, 4, "0:100", 0);
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

        scene.AppendClippedAnimation(1, QStringLiteral("half a step"), 0, 3); // a clip of a clip
        QCOMPARE(Keys(scene.animations[2]->layers[0].tracks[0]), QStringLiteral("0:2 3:5"));
        source->layers.clear();
        QVERIFY(Clip(scene, 0, 1).layers.empty());
    }
};

QTEST_APPLESS_MAIN(ClipTest)
#include "clip_test.moc"
