#include "lumenta/foundation/Exceptions.h"
#include "lumenta/serializers/SceneSerializers.h"
#include "reference/host/services/SceneSetup.h"
#include "reference/tools/DocumentSource.h"
#include "reference/tools/Failure.h"
#include "reference/tools/ModelSource.h"
#include "reference/tools/OutputFile.h"
#include "reference/tools/RenderOptions.h"
#include "reference/tools/Services.h"
#include "reference/tools/Texts.h"
#include "reference/tools/Verbs.h"

#include <QFileInfo>

#include <functional>

namespace Host {

namespace {

/// Writes a document to a file; answers with what was left out.
using Writer = std::function<QStringList(Document& document, const QString& fileName)>;

/// Those of scene files first. Empty where nobody writes files of that name.
Writer WriterFor(const QString& fileName)
{
    if (CanSaveScene(TheApplication().GetSerializers(), fileName))
        return [](Document& document, const QString& name) { return document.Save(name); };
    return {};
}

/// Of all files that can be written, with dots.
QStringList WrittenSuffixes()
{
    QStringList suffixes;
    for (const SerializerInfo& info : TheApplication().GetSerializers()->GetSavers())
        suffixes += QLatin1Char('.') + info.extension;
    suffixes.removeDuplicates();
    return suffixes;
}

void CheckTarget(const Arguments& arguments, const QString& fileName)
{
    if (!WriterFor(fileName)) {
        const QString suffixes = WrittenSuffixes().join(QStringLiteral(", "));
        throw Failure{fileName, QStringLiteral("no plug-in writes such files; what can be written: ")
                                    + (suffixes.isEmpty() ? QStringLiteral("nothing") : suffixes)};
    }
    CheckOutputFile(fileName);
    if (QFileInfo::exists(fileName) && !arguments.Has(QStringLiteral("force")))
        throw Failure{fileName, QStringLiteral("exists; --force would replace it")};
}

/// Brings the model to the moment that the options name, and stands it on the
/// floor and in the frame as it is then.
void Pose(const Arguments& arguments, const QString& source, Scene& scene)
{
    const auto time = arguments.Number(QStringLiteral("time"), 0.0, kLongestTime);
    const bool isNamed = arguments.Has(QStringLiteral("animation"));
    if (!time && !isNamed) return;
    QStringList names;
    for (const sAnimationInfo& animation : scene.GetAnimations())
        names += animation.strName;
    const QString name = isNamed ? arguments.Text(QStringLiteral("animation")) : QStringLiteral("0");
    scene.SetAnimation(FindAnimation(names, source, name), static_cast<float>(time.value_or(0.0)));
    scene.PlaceOnGround(scene.GetRoot()->GetChildren());
    ShowAll(scene);
}

void Run(const Arguments& arguments)
{
    const QStringList words = arguments.Words(QStringLiteral("MODEL"));
    if (words.size() < 2 || words[1].isEmpty()) arguments.Reject(QStringLiteral("OUT is missing"));
    if (words.size() > 2)
        arguments.Reject(QStringLiteral("two names are enough, but here is also %1").arg(Quoted(words[2])));
    const QString& source = words[0];
    const QString& target = words[1];
    RefuseModelOptions(arguments, source);
    CheckTarget(arguments, target);

    ProgressBar bar;
    const std::unique_ptr<Document> document = OpenDocument(source, bar);
    KeepInputs(InputFiles(*document->GetScene(), source), {target}, QStringLiteral("what is read"));
    Pose(arguments, source, *document->GetScene());
    try {
        const QStringList warnings = WriterFor(target)(*document, target);
        for (const QString& warning : warnings)
            PrintWarning(target, warning);
    } catch (const Exception& exception) {
        throw FailureOf(exception, target);
    }
}

} // namespace

Verb ConvertVerb()
{
    Manual manual;
    manual.verb = QStringLiteral("convert");
    manual.summary = QStringLiteral("write a model or a document in another format");
    manual.synopsis = QStringList(QStringLiteral("lumenta convert MODEL OUT [options]"));
    manual.description = QStringList{
        QStringLiteral("Opens MODEL as a document, in which a model stands on the floor and the camera sees all of "
                       "it, and writes that to OUT, whose suffix tells the format. What a format cannot keep is "
                       "warned of."),
        QStringLiteral("A document holds a model in one pose: that at rest, unless --animation or --time says "
                       "otherwise. Textures are found again where document and textures are moved together."),
        ModelSourceText(),
        DocumentSourceText(),
    };
    manual.options = {
        AnimationOption(),
        {QStringList(QStringLiteral("time")), QStringLiteral("MS"),
         QStringLiteral("The moment of the animation, in milliseconds; alone it means the first animation.")},
        {QStringList(QStringLiteral("force")), QString(),
         QStringLiteral("Replace a file that is there already; never one that is read.")},
    };
    manual.examples = {
        {QStringLiteral("lumenta convert robot.glb robot.lumenta"), QStringLiteral("A document with the model in it.")},
        {QStringLiteral("lumenta convert :figure step.lumenta --animation walk --time 250"),
         QStringLiteral("One moment of the built-in figure.")},
        {QStringLiteral("lumenta render robot.lumenta -o robot.png"), QStringLiteral("What its camera sees.")},
    };
    return {manual, Run};
}

} // namespace Host
