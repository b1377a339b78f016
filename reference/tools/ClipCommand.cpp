#include "lumenta/foundation/Exceptions.h"
#include "reference/tools/DocumentSource.h"
#include "reference/tools/Failure.h"
#include "reference/tools/ModelSource.h"
#include "reference/tools/Pictures.h"
#include "reference/tools/Stage.h"
#include "reference/tools/Texts.h"
#include "reference/tools/Verbs.h"

namespace Host {

namespace {

struct Cut {
    QString name;
    float from;
    float to;
};

/// Appends the clip and answers with its index.
int AppendClip(Model& model, int animation, const Cut& cut)
{
    const int index = static_cast<int>(model.scene->animations.size());
    try {
        model.scene->AppendClippedAnimation(animation, cut.name, cut.from, cut.to);
    } catch (const Exception& exception) {
        throw FailureOf(exception, model.fileName);
    }
    return index;
}

QString NodeName(const SkinAnimation::NodeTrack& track)
{
    return track.node ? track.node->name : QStringLiteral("(no node)");
}

QString TimeText(float time)
{
    return NumberText(static_cast<double>(time));
}

void AddTracks(Table& table, const SkinAnimation::AnimationLayer& layer)
{
    for (const SkinAnimation::NodeTrack& track : layer.tracks) {
        const bool any = !track.keys.empty();
        table.AddRow({NodeName(track), QString::number(track.keys.size()),
                      any ? TimeText(track.keys.front().time) : QStringLiteral("-"),
                      any ? TimeText(track.keys.back().time) : QStringLiteral("-")});
    }
}

/// The nodes of the source's tracks that the clip has none for. Clipping keeps
/// the order of tracks.
QStringList DroppedTracks(const SkinAnimation::AnimationLayer& source, const SkinAnimation::AnimationLayer& clip)
{
    QStringList dropped;
    auto kept = clip.tracks.begin();
    for (const SkinAnimation::NodeTrack& track : source.tracks) {
        if (kept != clip.tracks.end() && kept->node == track.node)
            ++kept;
        else
            dropped += NodeName(track);
    }
    return dropped;
}

QString ClipText(const SkinAnimation::Animation& source, const SkinAnimation::Animation& clip, const Cut& cut)
{
    Table table(
        {QStringLiteral("node"), QStringLiteral(">keys"), QStringLiteral(">first ms"), QStringLiteral(">last ms")});
    QStringList dropped;
    std::size_t nTracks = 0;
    std::size_t nKeys = 0;
    for (std::size_t i = 0; i < clip.layers.size(); ++i) {
        AddTracks(table, clip.layers[i]);
        dropped += DroppedTracks(source.layers[i], clip.layers[i]);
        nTracks += clip.layers[i].tracks.size();
        for (const SkinAnimation::NodeTrack& track : clip.layers[i].tracks)
            nKeys += track.keys.size();
    }
    return QStringLiteral("%1: %2 to %3 ms of %4, %5 ms long\n%6%7, %8\nDropped as motionless: %9\n")
        .arg(Quoted(clip.name), TimeText(cut.from), TimeText(cut.to), Quoted(source.name), TimeText(clip.duration),
             table.Text(), Counted(nTracks, QStringLiteral("track"), QStringLiteral("tracks")),
             Counted(nKeys, QStringLiteral("key"), QStringLiteral("keys")), QuotedList(dropped));
}

Cut ReadCut(const Arguments& arguments)
{
    const auto time = [&](const QString& option) {
        arguments.RequiredText(option);
        return static_cast<float>(*arguments.Number(option, 0.0, kLongestTime));
    };
    arguments.RequiredText(QStringLiteral("animation"));
    const Cut cut{arguments.RequiredText(QStringLiteral("name")), time(QStringLiteral("from")),
                  time(QStringLiteral("to"))};
    // The library would cut backwards, into keys out of time order.
    if (cut.from > cut.to)
        arguments.Reject(QStringLiteral("--from %1 lies after --to %2").arg(TimeText(cut.from), TimeText(cut.to)));
    return cut;
}

void Run(const Arguments& arguments)
{
    const QString source = arguments.OnlyWord(QStringLiteral("MODEL"));
    const Cut cut = ReadCut(arguments);
    RenderOptions pictures = ReadRenderOptions(arguments, QStringLiteral("clip"));

    if (IsDocument(source)) throw Failure{source, QStringLiteral("a document has no animation")};
    ProgressBar bar;
    Model model = OpenModel(source, bar.Part(QStringLiteral("reading"), 0, kLoaded));
    const int animation = FindAnimation(model, arguments.Text(QStringLiteral("animation")));
    const int clip = AppendClip(model, animation, cut);

    bar.Clear();
    const auto& animations = model.scene->animations;
    Print(ClipText(*animations[static_cast<std::size_t>(animation)], *animations[static_cast<std::size_t>(clip)], cut));
    if (!pictures.fileName.isEmpty()) {
        pictures.take.animation = clip;
        MakePictures(std::move(model), pictures, bar);
    }
}

std::vector<Option> ClipOptions()
{
    std::vector<Option> options = {
        {{QStringLiteral("animation")},
         QStringLiteral("NAME|N"),
         QStringLiteral("The animation to cut from, by its name, or by its number counted from 0.")},
        {{QStringLiteral("from")}, QStringLiteral("MS"), QStringLiteral("Where the clip begins, in milliseconds.")},
        {{QStringLiteral("to")}, QStringLiteral("MS"), QStringLiteral("Where it ends; not before --from.")},
        {{QStringLiteral("name")}, QStringLiteral("NAME"), QStringLiteral("What the clip is called.")},
    };
    const std::vector<Option> render = RenderOptionTable();
    options.insert(options.end(), render.begin(), render.end());
    return options;
}

} // namespace

Verb ClipVerb()
{
    Manual manual;
    manual.verb = QStringLiteral("clip");
    manual.summary = QStringLiteral("cut a piece out of an animation");
    manual.synopsis = QStringList{
        QStringLiteral("lumenta clip MODEL --animation NAME|N --from MS --to MS --name NAME"),
        QStringLiteral("             [options of 'lumenta render' -o OUT]"),
    };
    manual.description = QStringList{
        QStringLiteral("Cuts the piece between two moments out of an animation, as a clip that begins at 0, and lists "
                       "its tracks: the node that each moves, its keys, and the times of the first and the last. "
                       "Keys on a boundary stay; where a boundary falls between two keys, one is made there. A track "
                       "that does not move in the clip is dropped."),
        QStringLiteral("With -o the clip is drawn too; --time and --frames then mean times of the clip."),
        ModelSourceText(),
    };
    manual.options = ClipOptions();
    manual.examples = {
        {QStringLiteral("lumenta clip robot.glb --animation 0 --from 500 --to 1500 --name step"),
         QStringLiteral("What the middle second of the first animation holds.")},
        {QStringLiteral("lumenta clip :figure --animation 0 --from 0 --to 500 --name go -o start.png"),
         QStringLiteral("The same for another clip, with a picture of its beginning.")},
    };
    return {manual, Run};
}

} // namespace Host
