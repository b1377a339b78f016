#include "lumenta/foundation/Exceptions.h"
#include "lumenta/serializers/SceneSerializers.h"
#include "reference/host/images/ReplaceFile.h"
#include "reference/host/services/ModelExporters.h"
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
#include <memory>
#include <optional>

namespace Host {

namespace {

/// How files of some format are written.
struct Writer {
    std::function<QStringList(Document& document, const QString& fileName)> write; ///< Answers what was left out.
    bool writesSeveral = false; ///< Files beside, under names that begin alike.
};

std::vector<ModelExporter> AllExporters()
{
    return ModelExporters(TheApplication().Plugins());
}

/// Savers of scene files come first. Nothing where nobody writes such files.
std::optional<Writer> WriterFor(const QString& fileName)
{
    if (CanSaveScene(TheApplication().GetSerializers(), fileName))
        return Writer{[](Document& document, const QString& name) { return document.Save(name); }};
    const ModelExporter exporter = ExporterFor(AllExporters(), fileName);
    if (!exporter) return std::nullopt;
    const auto write = [exporter](Document& document, const QString& name) {
        exporter->Export(*document.GetScene(), name, QString());
        return exporter->GetWarnings();
    };
    return Writer{write, true};
}

/// Of all files that can be written, with dots.
QStringList WrittenSuffixes()
{
    QStringList suffixes;
    const QList<SerializerInfo> savers = TheApplication().GetSerializers()->GetSavers();
    for (const SerializerInfo& info : savers)
        suffixes += QLatin1Char('.') + info.extension;
    for (const ModelExporter& exporter : AllExporters())
        for (const sModelExportFormat& format : exporter->GetFormats())
            for (const QString& extension : format.extensions)
                suffixes += QLatin1Char('.') + extension;
    suffixes.removeDuplicates();
    return suffixes;
}

/// Files that the export of `source` might replace beside. The source itself is
/// none of them.
QStringList Endangered(const QString& fileName, const QString& source)
{
    const QFileInfoList beside = FilesBeside(TargetPath(fileName));
    QStringList endangered;
    for (const QFileInfo& file : beside)
        if (file != QFileInfo(source)) endangered += file.filePath();
    return endangered;
}

Writer CheckedWriter(const Arguments& arguments, const QString& fileName, const QString& source)
{
    const std::optional<Writer> writer = WriterFor(fileName);
    if (!writer) {
        const QString suffixes = WrittenSuffixes().join(QStringLiteral(", "));
        throw Failure{fileName, QStringLiteral("no plug-in writes such files; what can be written: ")
                                    + (suffixes.isEmpty() ? QStringLiteral("nothing") : suffixes)};
    }
    CheckOutputFile(fileName);
    if (arguments.Has(QStringLiteral("force"))) return *writer;
    if (QFileInfo::exists(fileName)) throw Failure{fileName, QStringLiteral("exists; --force would replace it")};
    const QStringList endangered = writer->writesSeveral ? Endangered(fileName, source) : QStringList();
    if (!endangered.isEmpty())
        throw Failure{fileName, QStringLiteral("files beside it might replace %1; --force allows that")
                                    .arg(Quoted(QFileInfo(endangered.first()).fileName()))};
    return *writer;
}

void ProtectInputs(const Writer& writer, const IScene& scene, const QString& source, const QString& target)
{
    const QStringList inputs = InputFiles(scene, source);
    KeepInputs(inputs, {target}, QStringLiteral("what is read"));
    if (!writer.writesSeveral) return;
    QStringList kept;
    for (const QString& input : inputs)
        kept += QFileInfo(input).canonicalFilePath();
    const QStringList endangered = Endangered(target, source);
    for (const QString& file : endangered)
        if (kept.contains(QFileInfo(file).canonicalFilePath()))
            throw Failure{target, QStringLiteral("files beside it might replace %1, which is read; another name helps")
                                      .arg(Quoted(QFileInfo(file).fileName()))};
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
    const Writer writer = CheckedWriter(arguments, target, source);

    ProgressBar bar;
    const std::unique_ptr<Document> document = OpenDocument(source, bar);
    ProtectInputs(writer, *document->GetScene(), source, target);
    Pose(arguments, source, *document->GetScene());
    try {
        const QStringList warnings = writer.write(*document, target);
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
         QStringLiteral("Replace files that are there already; never those that are read. Some formats take several "
                        "files, whose names begin alike.")},
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
