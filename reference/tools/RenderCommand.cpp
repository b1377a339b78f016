#include "reference/tools/DocumentSource.h"
#include "reference/tools/ModelSource.h"
#include "reference/tools/Pictures.h"
#include "reference/tools/Services.h"
#include "reference/tools/Stage.h"
#include "reference/tools/Texts.h"
#include "reference/tools/Verbs.h"

#include <algorithm>
#include <iterator>
#include <numeric>

namespace Host {

namespace {

constexpr const char* kStageNames[] = {"plug-ins",  "reading", "pose",    "skin and normals", "document", "framing",
                                       "preparing", "drawing", "writing", "rest"};
static_assert(std::size(kStageNames) == eStageCount, "each has a name");

/// A line for each stage, and one for all.
QString TimesText(const std::array<qint64, eStageCount>& times)
{
    const qint64 all = std::accumulate(times.begin(), times.end(), qint64(0));
    Table table({QStringLiteral("stage"), QStringLiteral(">ms"), QStringLiteral(">share")});
    const auto add = [&](const char* name, qint64 time) {
        const double part = static_cast<double>(time) / static_cast<double>(std::max(all, qint64(1)));
        table.AddRow({QLatin1String(name), QString::number(static_cast<double>(time) * 1e-6, 'f', 1),
                      QString::number(100.0 * part, 'f', 1) + QStringLiteral(" %")});
    };
    for (std::size_t i = 0; i < times.size(); ++i)
        add(kStageNames[i], times[i]);
    add("all", all);
    return table.Text();
}

void RenderDocument(const Arguments& arguments, const QString& source, Stopwatch* pStopwatch)
{
    RefuseModelOptions(arguments, source);
    arguments.RequiredText(QStringLiteral("o"));
    ProgressBar bar;
    std::unique_ptr<Document> document;
    {
        const Timed timed(pStopwatch, eStageReading);
        document = OpenDocument(source, bar);
    }
    RenderOptions options = ReadRenderOptions(arguments, QStringLiteral("render"), document->GetScene());
    options.pStopwatch = pStopwatch;
    MakePictures(std::move(document), source, options, bar);
}

void RenderModel(const Arguments& arguments, const QString& source, Stopwatch* pStopwatch)
{
    RenderOptions options = ReadRenderOptions(arguments, QStringLiteral("render"));
    options.pStopwatch = pStopwatch;
    arguments.RequiredText(QStringLiteral("o"));

    ProgressBar bar;
    Model model;
    {
        const Timed timed(pStopwatch, eStageReading);
        model = OpenModel(source, bar.Part(QStringLiteral("reading"), 0, kLoaded));
    }
    options.take.animation = FindShownAnimation(model, arguments, options.plays);
    MakePictures(std::move(model), options, bar);
}

void Run(const Arguments& arguments)
{
    const QString source = arguments.OnlyWord(QStringLiteral("MODEL"));
    std::optional<Stopwatch> stopwatch;
    if (arguments.Has(QStringLiteral("stats"))) stopwatch.emplace();
    Stopwatch* const pStopwatch = stopwatch ? &*stopwatch : nullptr;
    if (pStopwatch) {
        const Timed timed(pStopwatch, eStagePlugins);
        TheApplication().RendererNames(); // who asks first has them looked for
    }
    if (IsDocument(source))
        RenderDocument(arguments, source, pStopwatch);
    else
        RenderModel(arguments, source, pStopwatch);
    if (stopwatch) Print(TimesText(stopwatch->GetTimes()));
}

} // namespace

Verb RenderVerb()
{
    Manual manual;
    manual.verb = QStringLiteral("render");
    manual.summary = QStringLiteral("make pictures of a model, at rest or in motion");
    manual.synopsis = QStringList(QStringLiteral("lumenta render MODEL [options] -o OUT"));
    manual.description = QStringList{
        QStringLiteral("Poses the model and draws it: one picture, a numbered series, or a contact sheet of several "
                       "moments. Ground, camera distance and field of view are the same in all pictures of one run, "
                       "and large enough for every pose, so nothing jumps and nothing is cut off."),
        ModelSourceText(),
        DocumentSourceText(),
        QStringLiteral("A document is drawn as its own camera sees it, in its own size, unless --azimuth, --elevation "
                       "or --turntable ask for a view of all of it. --animation, --time, --up and --hide-... are for "
                       "models."),
        QStringLiteral("Without --animation, --time and --frames the rest pose is drawn; --time, or --frames without "
                       "--turntable, means the first animation where none is named."),
        QStringLiteral("Textures are looked for as the model names them, from its own folder, then by their bare file "
                       "name in that folder, then in the model. One that cannot be had is warned of, and its mesh "
                       "drawn without."),
        QStringLiteral("A picture is written aside and renamed when it is complete. Where a series ends early, the "
                       "pictures before are complete and stay."),
    };
    manual.options = RenderOptionTable();
    manual.options.insert(manual.options.begin(), AnimationOption());
    manual.options.push_back(
        {{QStringLiteral("stats")},
         QString(),
         QStringLiteral("Tell where the time went: milliseconds of each stage and its share of all. \"reading\" is the "
                        "file and its textures, and of a document all until it stands open; \"framing\" finds where the camera must stand for all poses; "
                        "\"preparing\" is what the renderer does before the first pixel, as copying the scene and "
                        "building a tree of its triangles.")});
    manual.examples = {
        {QStringLiteral("lumenta render robot.glb -o robot.png"), QStringLiteral("The rest pose.")},
        {QStringLiteral("lumenta render robot.glb --animation walk --time 250 -o step.png"),
         QStringLiteral("One moment of an animation.")},
        {QStringLiteral("lumenta render :figure --frames 12 --size 256x256 -o sheet.png"),
         QStringLiteral("Twelve moments of the first animation, side by side.")},
        {QStringLiteral("lumenta render robot.glb --turntable --frames 36 -o turn%04d.png"),
         QStringLiteral("36 files, turn0000.png to turn0035.png, once around the rest pose.")},
    };
    return {manual, Run};
}

} // namespace Host
