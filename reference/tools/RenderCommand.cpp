#include "reference/tools/DocumentSource.h"
#include "reference/tools/ModelSource.h"
#include "reference/tools/Pictures.h"
#include "reference/tools/Stage.h"
#include "reference/tools/Verbs.h"

namespace Host {

namespace {

void RenderDocument(const Arguments& arguments, const QString& source)
{
    RefuseModelOptions(arguments, source);
    arguments.RequiredText(QStringLiteral("o"));
    ProgressBar bar;
    std::unique_ptr<Document> document = OpenDocument(source, bar);
    const RenderOptions options = ReadRenderOptions(arguments, QStringLiteral("render"), document->GetScene());
    MakePictures(std::move(document), source, options, bar);
}

void Run(const Arguments& arguments)
{
    const QString source = arguments.OnlyWord(QStringLiteral("MODEL"));
    if (IsDocument(source)) return RenderDocument(arguments, source);
    RenderOptions options = ReadRenderOptions(arguments, QStringLiteral("render"));
    arguments.RequiredText(QStringLiteral("o"));

    ProgressBar bar;
    Model model = OpenModel(source, bar.Part(QStringLiteral("reading"), 0, kLoaded));
    options.take.animation = FindShownAnimation(model, arguments, options.plays);
    MakePictures(std::move(model), options, bar);
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
