#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IMesh.h"
#include "lumenta/scene/Picking.h"
#include "reference/host/Directions.h"
#include "reference/host/document/Placement.h"
#include "reference/host/images/ReplaceFile.h"
#include "reference/tools/DocumentSource.h"
#include "reference/tools/Failure.h"
#include "reference/tools/ImageFile.h"
#include "reference/tools/Json.h"
#include "reference/tools/ModelSource.h"
#include "reference/tools/OutputFile.h"
#include "reference/tools/PickMap.h"
#include "reference/tools/PickOverlay.h"
#include "reference/tools/PictureMaker.h"
#include "reference/tools/Stage.h"
#include "reference/tools/Texts.h"
#include "reference/tools/Toolkit.h"
#include "reference/tools/Verbs.h"

#include <QRegularExpression>

#include <new>

namespace Host {

namespace {

/// What is asked for on the command line.
struct Request {
    QString source;
    std::vector<QPoint> pixels;
    RenderOptions view; ///< Its file is that of the overlay.
    QString mapFile;
    bool legend = false;
    bool json = false;
};

QPoint ReadPixel(const Arguments& arguments, const QString& word, QSize size)
{
    static const QRegularExpression pattern(QStringLiteral("\\A(-?[0-9]+),(-?[0-9]+)\\z"));
    const QRegularExpressionMatch match = pattern.match(word);
    if (!match.hasMatch())
        arguments.Reject(QStringLiteral("%1 is not a pixel X,Y of two whole numbers").arg(Quoted(word)));
    bool fits[2];
    const QPoint pixel(match.captured(1).toInt(&fits[0]), match.captured(2).toInt(&fits[1]));
    if (!fits[0] || !fits[1] || !QRect(QPoint(), size).contains(pixel))
        arguments.Reject(QStringLiteral("pixel %1 is outside of the picture of %2x%3")
                             .arg(word)
                             .arg(size.width())
                             .arg(size.height()));
    return pixel;
}

void CheckFiles(const Arguments& arguments, const Request& request)
{
    if (request.pixels.empty() && request.mapFile.isEmpty())
        arguments.Reject(QStringLiteral("neither a pixel X,Y nor --map is given"));
    if (request.pixels.empty() && !request.view.fileName.isEmpty())
        arguments.Reject(QStringLiteral("--overlay marks pixels, but none is given"));
    if (request.legend && request.mapFile.isEmpty()) arguments.Reject(QStringLiteral("--legend needs --map"));
    if (request.view.fileName.isEmpty())
        for (const QString& option : {QStringLiteral("renderer"), QStringLiteral("samples"), QStringLiteral("threads")})
            if (arguments.Has(option)) arguments.Reject(QStringLiteral("--%1 needs --overlay").arg(option));
    const QStringList files = {request.view.fileName, request.mapFile};
    for (const QString& file : files)
        if (!file.isEmpty()) CheckImageFile(QStringLiteral("pick"), file);
    if (!files[0].isEmpty() && !files[1].isEmpty() && TargetPath(files[0]) == TargetPath(files[1]))
        arguments.Reject(QStringLiteral("--overlay and --map name the same file"));
}

/// \param pDocument is looked at; null for a model
Request ReadRequest(const Arguments& arguments, const IScene* pDocument)
{
    Request request;
    const QStringList words = arguments.Words(QStringLiteral("MODEL"));
    request.source = words.first();
    request.view = ReadRenderOptions(arguments, QStringLiteral("pick"), pDocument);
    const QStringList pixels = words.mid(1);
    for (const QString& word : pixels)
        request.pixels.push_back(ReadPixel(arguments, word, request.view.take.size));
    const auto file = [&arguments](const QString& option) {
        return arguments.Has(option) ? arguments.RequiredText(option) : QString();
    };
    request.view.fileName = file(QStringLiteral("overlay"));
    request.mapFile = file(QStringLiteral("map"));
    request.legend = arguments.Has(QStringLiteral("legend"));
    request.json = arguments.Has(QStringLiteral("json"));
    CheckFiles(arguments, request);
    return request;
}

/// What lies under a pixel.
struct Hit {
    QPoint pixel;
    Picked picked;
    std::optional<TVec3<float>> world; ///< On the node, or else on the ground.
};

Hit HitAt(Scene& scene, QPoint pixel, QSize size)
{
    const bool ground = scene.IsGroundPlaneEnabled();
    Hit hit{pixel, {}, {}};
    const TVec2<float> viewSize{static_cast<float>(size.width()), static_cast<float>(size.height())};
    FindNodeByScreenPoint(pixel, viewSize, scene, hit.picked.node, hit.picked.mesh);
    // From below the ground hides nothing in a picture, but it does when a point is asked for.
    scene.SetGroundPlaneEnabled(ground && !hit.picked.node);
    TVec3<float> world;
    if (FindIntersectionByScreenPoint(pixel, viewSize, scene, world)) hit.world = world;
    scene.SetGroundPlaneEnabled(ground);
    return hit;
}

// The facts are gathered once, as JSON; the table for people reads them there.

QJsonObject FactsOf(const Hit& hit, Stage& stage)
{
    QJsonObject facts{{QStringLiteral("pixel"), QJsonArray{hit.pixel.x(), hit.pixel.y()}},
                      {QStringLiteral("hit"), QStringLiteral("nothing")}};
    for (const char* const key : {"node", "id", "mesh", "world", "model", "distance"})
        facts.insert(QLatin1String(key), QJsonValue::Null);
    if (hit.picked.node) {
        facts[QStringLiteral("node")] = NodePath(*hit.picked.node);
        facts[QStringLiteral("id")] = hit.picked.node->GetId();
        facts[QStringLiteral("mesh")] = hit.picked.mesh->GetName();
    }
    if (!hit.world) return facts;
    facts[QStringLiteral("hit")] = hit.picked.node ? QStringLiteral("node") : QStringLiteral("ground");
    const TVec3<float> eye = stage.GetScene().GetCamera()->GetMatrix().GetTranslation();
    facts[QStringLiteral("world")] = Coordinates(*hit.world);
    facts[QStringLiteral("distance")] = LengthOf(Widened(*hit.world) - Widened(eye));
    const INode* const model = stage.GetModel();
    if (const auto toModel = model ? LocalFor(Matrix(), model->GetMatrix()) : std::nullopt) {
        TVec3<float> inModel = *hit.world;
        TransformPoint(inModel, *toModel);
        facts[QStringLiteral("model")] = Coordinates(inModel);
    }
    return facts;
}

QJsonObject FactsOf(const Request& request, const std::vector<Hit>& hits, Stage& stage)
{
    const Take& take = request.view.take;
    QJsonArray pixels;
    for (const Hit& hit : hits)
        pixels += FactsOf(hit, stage);
    QJsonObject facts{
        {QStringLiteral("file"), request.source},
        {QStringLiteral("animation"), QJsonValue::Null},
        {QStringLiteral("time"), QJsonValue::Null},
        {QStringLiteral("size"), QJsonArray{take.size.width(), take.size.height()}},
        {QStringLiteral("scale"), QJsonValue::Null},
        {QStringLiteral("pixels"), pixels},
    };
    if (stage.GetModel()) {
        const Matrix& placement = stage.GetModel()->GetMatrix();
        const TVec3<float> unit{placement(0, 0), placement(0, 1), placement(0, 2)};
        facts[QStringLiteral("scale")] = LengthOf(Widened(unit));
    }
    if (take.animation) {
        facts[QStringLiteral("animation")] = *take.animation;
        facts[QStringLiteral("time")] = static_cast<double>(take.time.value_or(0.0f));
    }
    return facts;
}

QString PixelText(const QJsonValue& pixel)
{
    return QStringLiteral("%1,%2").arg(pixel[0].toInt()).arg(pixel[1].toInt());
}

QString TableText(const QJsonObject& facts)
{
    Table table({QStringLiteral(">pixel"), QStringLiteral("node"), QStringLiteral("mesh"), QStringLiteral("world"),
                 QStringLiteral("in the model"), QStringLiteral(">distance")});
    const QJsonArray pixels = facts[QStringLiteral("pixels")].toArray();
    for (const QJsonValue& pixel : pixels) {
        const QString hit = pixel[QStringLiteral("hit")].toString();
        const auto point = [&pixel](const QString& key) {
            return pixel[key].isNull() ? QStringLiteral("-") : PointText(pixel[key]);
        };
        const QJsonValue distance = pixel[QStringLiteral("distance")];
        table.AddRow({PixelText(pixel[QStringLiteral("pixel")]), pixel[QStringLiteral("node")].toString(hit),
                      pixel[QStringLiteral("mesh")].toString(QStringLiteral("-")), point(QStringLiteral("world")),
                      point(QStringLiteral("model")),
                      distance.isNull() ? QStringLiteral("-") : NumberText(distance.toDouble())});
    }
    return table.Text();
}

/// "/figure/hat (0.100, 0.200, 1.300)"
PixelMark MarkOf(const Hit& hit, const QJsonValue& facts)
{
    const QString name = facts[QStringLiteral("node")].toString(facts[QStringLiteral("hit")].toString());
    if (!hit.world) return {hit.pixel, hit.picked, name};
    QStringList numbers;
    for (const float each : {hit.world->x, hit.world->y, hit.world->z})
        numbers += QString::number(static_cast<double>(each), 'f', 3);
    return {hit.pixel, hit.picked, QStringLiteral("%1 (%2)").arg(name, numbers.join(QStringLiteral(", ")))};
}

void WritePictures(const Request& request, const std::vector<Hit>& hits, const QJsonArray& facts, Stage& stage,
                   ProgressBar& bar)
{
    const bool overlay = !request.view.fileName.isEmpty();
    const double kPicked = overlay ? 60.0 : 100.0;
    PrepareToolkit();
    Scene& scene = stage.GetScene();
    const NodeColours colours(scene);
    const PickMap map(scene, request.view.take.size, bar.Part(QStringLiteral("picking"), kPlanned, kPicked));
    if (overlay) {
        std::vector<PixelMark> marks;
        for (std::size_t i = 0; i < hits.size(); ++i)
            marks.push_back(MarkOf(hits[i], facts[static_cast<int>(i)]));
        PictureMaker maker(request.view, request.source, bar);
        const QImage picture = maker.Draw(scene, bar.Part(QStringLiteral("drawing"), kPicked, 100.0));
        WriteImageFile(request.view.fileName, DrawOverlay(picture, map, colours, marks));
    }
    if (!request.mapFile.isEmpty()) {
        const QImage picture = MapPicture(map, colours);
        WriteImageFile(request.mapFile, request.legend ? WithLegend(picture, map, colours) : picture);
    }
}

void Answer(const Request& request, Stage&& stage, ProgressBar& bar)
{
    stage.GetSequence().Show(stage.GetSequence().GetFrames().front());

    std::vector<Hit> hits;
    for (const QPoint pixel : request.pixels)
        hits.push_back(HitAt(stage.GetScene(), pixel, request.view.take.size));
    const QJsonObject facts = FactsOf(request, hits, stage);
    const QString file = request.mapFile.isEmpty() ? request.view.fileName : request.mapFile;
    try {
        if (!file.isEmpty()) WritePictures(request, hits, facts[QStringLiteral("pixels")].toArray(), stage, bar);
    } catch (const Exception& exception) {
        throw FailureOf(exception, file);
    } catch (const std::bad_alloc&) {
        throw Failure{file, QStringLiteral("there is not enough memory for a picture of %1x%2")
                                .arg(request.view.take.size.width())
                                .arg(request.view.take.size.height())};
    }
    bar.Clear();
    if (request.json)
        Print(JsonText(facts));
    else if (!hits.empty())
        Print(TableText(facts));
}

void PickInDocument(const Arguments& arguments, const QString& source)
{
    RefuseModelOptions(arguments, source);
    ProgressBar bar;
    std::unique_ptr<Document> document = OpenDocument(source, bar);
    const Request request = ReadRequest(arguments, document->GetScene());
    KeepInputs(InputFiles(*document->GetScene(), source), {request.view.fileName, request.mapFile}, kDrawnFrom);
    Answer(request, Stage(std::move(document), source, request.view, bar), bar);
}

void Run(const Arguments& arguments)
{
    const QString source = arguments.Words(QStringLiteral("MODEL")).constFirst();
    if (IsDocument(source)) return PickInDocument(arguments, source);
    Request request = ReadRequest(arguments, nullptr);
    ProgressBar bar;
    Model model = OpenModel(source, bar.Part(QStringLiteral("reading"), 0, kLoaded));
    request.view.take.animation = FindShownAnimation(model, arguments, request.view.plays);
    KeepInputs(InputFiles(model), {request.view.fileName, request.mapFile}, kDrawnFrom);
    Answer(request, Stage(std::move(model), request.view, bar), bar);
}

std::vector<Option> PickOptions()
{
    std::vector<Option> options = {
        AnimationOption(),
        {{QStringLiteral("map")},
         QStringLiteral("OUT"),
         QStringLiteral("Write a picture of the view in which every pixel has the colour of the node under it. A node "
                        "keeps its colour whatever the moment and the view. No pixel has to be named then.")},
        {{QStringLiteral("legend")}, QString(), QStringLiteral("Write the names of the nodes beside the map.")},
        {{QStringLiteral("overlay")},
         QStringLiteral("OUT"),
         QStringLiteral("Draw the view, as 'lumenta render' does, and mark in it the pixels and the meshes that they "
                        "hit. --renderer, --samples and --threads are for this picture alone.")},
        {{QStringLiteral("json")},
         QString(),
         QStringLiteral("Print a JSON object, for programs. Numbers are exact: reading them gives every bit back. "
                        "\"hit\" is \"node\", \"ground\" or \"nothing\"; what there is not is null. \"world\" is the "
                        "point in the document, \"model\" the same in the coordinates of the file; a unit of the file "
                        "is \"scale\" units of the document.")},
    };
    const std::vector<Option> view = ViewOptionTable();
    options.insert(options.end(), view.begin(), view.end());
    return options;
}

} // namespace

Verb PickVerb()
{
    Manual manual;
    manual.verb = QStringLiteral("pick");
    manual.summary = QStringLiteral("tell what lies under a pixel of a picture");
    manual.synopsis = QStringList{
        QStringLiteral("lumenta pick MODEL [options] X,Y [X,Y ...]"),
        QStringLiteral("lumenta pick MODEL [options] --map OUT [X,Y ...]"),
    };
    manual.description = QStringList{
        QStringLiteral("Looks through pixels of the picture that 'lumenta render' draws with the same options, and "
                       "lists for each the node and its mesh, the point where it is met, and the distance of that "
                       "point from the camera. A pixel that meets only the floor says \"ground\", any other "
                       "\"nothing\"."),
        QStringLiteral("Pixels are counted from 0, from the upper left corner. What is picked lies under the upper "
                       "left corner of the pixel, while pictures show its middle. A mesh may be met a little beside "
                       "itself, by as much as a ten-thousandth of the diagonal of its box; that shows where "
                       "triangles are thin and sharp."),
        QStringLiteral("Without --animation and --time the model is at rest; --time alone means the first animation."),
        ModelSourceText(),
        DocumentSourceText(),
        QStringLiteral(
            "Points are told twice. In the world, z points up, z = 0 is the floor under the lowest point "
            "of the model at that moment, and the front of the model looks along -y. The model keeps its "
            "size and its place on the floor, but for one that is larger than 1000 or smaller than 0.01, "
            "which is scaled by a power of ten (so that sizes of 1e-10 to 1e9 can be picked; in a picture "
            "taller than wide it counts as larger by as much), or that stands farther than 1000 aside, which "
            "is moved to the middle. In the model, the coordinates are those of the file, as 'lumenta info' has them."),
        QStringLiteral("A node is named by the way to it from the top of the document, where the meshes of the model "
                       "are the nodes "
                       "of one group, whatever hierarchy the file has; meshes of one name that follow each other are "
                       "one node. In a name, '/' and '\\' have "
                       "a '\\' before them, and characters that would upset a terminal are written \\u001b."),
    };
    manual.options = PickOptions();
    manual.examples = {
        {QStringLiteral("lumenta pick robot.glb --animation walk --time 250 256,300"),
         QStringLiteral("What is in the middle of the picture, a little below, at that moment.")},
        {QStringLiteral("lumenta pick :figure --time 200 250,90 260,300 --overlay picked.png"),
         QStringLiteral("Two pixels, and a picture in which they are marked.")},
        {QStringLiteral("lumenta pick :figure --map map.png --legend"),
         QStringLiteral("Which node is where, at rest.")},
    };
    return {manual, Run};
}

} // namespace Host
