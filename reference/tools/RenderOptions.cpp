#include "reference/tools/RenderOptions.h"

#include "lumenta/interfaces/IFreeCamera.h"
#include "lumenta/interfaces/IScene.h"
#include "lumenta/render/RenderSizing.h"
#include "reference/host/ContactSheet.h"
#include "reference/tools/Failure.h"
#include "reference/tools/ImageFile.h"
#include "reference/tools/Services.h"

#include <QRegularExpression>

#include <algorithm>

namespace Host {

namespace {

constexpr int kMostPixels = 8192; ///< Along one side, as AdjustResolution() holds it.
constexpr int kMostFrames = 10000;
constexpr int kTurntableFrames = 12;
constexpr int kMostSheetSide = 32767;                ///< The toolkit paints nothing beyond.
constexpr qint64 kMostSheetPixels = qint64(1) << 28; ///< 1 GiB.

/// A place for a number: %d, or with leading zeros %04d. In the last part of
/// the path only.
const QRegularExpression& NumberPlace()
{
    static const QRegularExpression place(QStringLiteral("%(?:0([1-9]))?d(?=[^/]*$)"));
    return place;
}

/// What is given of the size; 0 for a side that is not.
QSize ReadSides(const Arguments& arguments)
{
    const QString option = QStringLiteral("size");
    static const QRegularExpression pattern(QStringLiteral("\\A(?=.*[0-9])([0-9]{0,6})(?:x([0-9]{0,6}))?\\z"));
    const QRegularExpressionMatch match = pattern.match(arguments.Text(option));
    bool fits = match.hasMatch();
    const auto side = [&match, &fits](int group) {
        const QString digits = match.captured(group);
        const int nPixels = digits.toInt();
        fits = fits && (digits.isEmpty() || (nPixels >= 1 && nPixels <= kMostPixels));
        return nPixels;
    };
    const int width = side(1);
    const int height = side(2);
    if (!fits) arguments.RejectValue(option, QStringLiteral("a size from 1x1 to %1x%1").arg(kMostPixels));
    return {width, height};
}

QSize ReadSize(const Arguments& arguments, const IScene* pDocument)
{
    const QSize usual = pDocument ? pDocument->GetRenderSize() : QSize(512, 512);
    const float aspect = pDocument ? pDocument->GetCamera()->GetFrameAspect() : 1.0f;
    const QSize requested = arguments.Has(QStringLiteral("size")) ? ReadSides(arguments) : usual;
    // A side that is filled in can come out as nothing.
    return AdjustResolution(requested, aspect, arguments.Has(QStringLiteral("keep-aspect"))).expandedTo({1, 1});
}

TVec3<float> AxisOf(const QString& letter)
{
    return {letter == QLatin1String("x") ? 1.0f : 0.0f, letter == QLatin1String("y") ? 1.0f : 0.0f,
            letter == QLatin1String("z") ? 1.0f : 0.0f};
}

Take ReadTake(const Arguments& arguments, const IScene* pDocument)
{
    Take take;
    take.size = ReadSize(arguments, pDocument);
    take.turntable = arguments.Has(QStringLiteral("turntable"));
    take.nFrames =
        arguments.Integer(QStringLiteral("frames"), 1, kMostFrames).value_or(take.turntable ? kTurntableFrames : 1);
    if (const auto time = arguments.Number(QStringLiteral("time"), 0.0, kLongestTime))
        take.time = static_cast<float>(*time);
    if (take.time && take.nFrames > 1 && !take.turntable)
        arguments.Reject(QStringLiteral("--time and --frames exclude each other without --turntable"));
    const auto azimuth = arguments.Number(QStringLiteral("azimuth"), -360.0, 360.0);
    const auto elevation = arguments.Number(QStringLiteral("elevation"), -89.0, 89.0);
    take.azimuth = azimuth ? static_cast<float>(*azimuth) : 30.0f;
    take.elevation = elevation ? static_cast<float>(*elevation) : 15.0f;
    if (!pDocument) return take;
    if (take.nFrames > 1 && !take.turntable)
        arguments.Reject(QStringLiteral("--frames needs --turntable, since nothing moves in a document"));
    take.ownCamera = !azimuth && !elevation && !take.turntable;
    if (!azimuth) take.azimuth = pDocument->GetCamera()->GetHeading() - 90.0f; // where FrameBox() has it
    if (!elevation) take.elevation = pDocument->GetCamera()->GetPitch();
    return take;
}

std::optional<TVec3<float>> ReadUp(const Arguments& arguments)
{
    const QString option = QStringLiteral("up");
    const QStringList axes = {QStringLiteral("x"), QStringLiteral("y"), QStringLiteral("z")};
    const QString axis = arguments.OneOf(option, axes);
    if (!arguments.Has(option)) return {};
    return AxisOf(axis);
}

bool IsTooLarge(QSize sheet)
{
    return std::max(sheet.width(), sheet.height()) > kMostSheetSide
           || qint64(sheet.width()) * sheet.height() > kMostSheetPixels;
}

void CheckFiles(const Arguments& arguments, const QString& verb, const RenderOptions& options)
{
    if (options.fileName.count(NumberPlace()) > 1)
        arguments.Reject(QStringLiteral("--output: %1 has more than one place for a number").arg(options.fileName));
    const Take& take = options.take;
    if (!IsSeries(options.fileName) && take.nFrames > 1 && IsTooLarge(ContactSheetSize(take.nFrames, take.size)))
        arguments.Reject(QStringLiteral("a contact sheet of %1 pictures of %2x%3 is too large")
                             .arg(take.nFrames)
                             .arg(take.size.width())
                             .arg(take.size.height()));
    const QStringList fileNames = OutputFiles(options);
    for (const QString& fileName : fileNames)
        CheckImageFile(verb, fileName);
}

} // namespace

std::vector<Option> RenderOptionTable()
{
    const auto text = [](const char* words) { return QString::fromUtf8(words); };
    const auto option = [&text](const char* name, const char* value, const char* words) {
        return Option{{text(name)}, text(value), text(words)};
    };
    return {
        option("time", "MS",
               "The moment of the animation to draw, in milliseconds. Before its first key and after "
               "its last the nearest pose holds. The usual moment is 0."),
        option("frames", "N",
               "Draw N pictures, with times that spread evenly from the beginning of the animation to "
               "its end, both included. At most 10000."),
        option("turntable", "",
               "Let the camera go round the model once in the course of the frames, of which there "
               "are 12 without --frames. With --time the model keeps that pose; without it the "
               "animation plays meanwhile; without an animation it is the rest pose."),
        option("size", "WxH",
               "Width and height of each picture in pixels, at most 8192. Of W or xH alone the other "
               "side follows from the shape of the document's frame; that of a model is square. The usual size is "
               "the document's own, and 512x512 for a model."),
        option("keep-aspect", "", "Let the height follow the width, whatever height is given."),
        option("renderer", "NAME",
               "embree traces rays: sun, sky and soft shadows. painter is quick and plain. The "
               "usual one is embree."),
        option("samples", "N",
               "Rays per pixel, 1 to 4096. More are smoother and slower. Usually 16. painter has no "
               "use for it."),
        option("threads", "N",
               "How many threads draw, 0 to 256; 0, as usual, is one for each processor. The picture "
               "is the same, bit by bit, with any number."),
        option("azimuth", "D",
               "From where the camera looks, in degrees about the up axis, -360 to 360: 0 is the "
               "front, 90 the model's left side. Usually 30. Of a document all is then seen, and not what "
               "its own camera sees; so it is with the next, and with --turntable."),
        option("elevation", "D", "How high it stands, in degrees above the horizon, -89 to 89. Usually 15."),
        option("up", "x|y|z", "The axis that points up, where the model's file says it wrongly or not at all."),
        option("no-ground", "", "Leave out the floor."),
        option("hide-mesh", "NAME", "Leave out every mesh of this name. May be repeated."),
        option("hide-material", "NAME", "Leave out every mesh of this material. May be repeated."),
        Option{
            {text("o"), text("output")},
            text("OUT"),
            text("The picture to write, a name that ends in .png. With %04d in the name, each frame is a file of its "
                 "own, numbered from 0000; %d numbers them without leading zeros. Otherwise several frames make one "
                 "contact sheet.")},
    };
}

std::vector<Option> ViewOptionTable()
{
    std::vector<Option> options = RenderOptionTable();
    const auto isOfSeveral = [](const Option& option) {
        static const QStringList names = {QStringLiteral("frames"), QStringLiteral("turntable"), QStringLiteral("o")};
        return names.contains(option.names.first());
    };
    options.erase(std::remove_if(options.begin(), options.end(), isOfSeveral), options.end());
    return options;
}

Option AnimationOption()
{
    return {{QStringLiteral("animation")},
            QStringLiteral("NAME|N"),
            QStringLiteral("The animation to show, by its name, or by its number counted from 0. A name wins over a "
                           "number; of equal names the first.")};
}

RenderOptions ReadRenderOptions(const Arguments& arguments, const QString& verb, const IScene* pDocument)
{
    RenderOptions options;
    options.take = ReadTake(arguments, pDocument);
    options.plays =
        arguments.Has(QStringLiteral("time")) || (arguments.Has(QStringLiteral("frames")) && !options.take.turntable);
    options.up = ReadUp(arguments);
    options.ground = !arguments.Has(QStringLiteral("no-ground"));
    const QStringList renderers = TheApplication().RendererNames();
    if (!renderers.isEmpty()) options.renderer = arguments.OneOf(QStringLiteral("renderer"), renderers);
    options.samplesPerPixel = arguments.Integer(QStringLiteral("samples"), 1, 4096).value_or(options.samplesPerPixel);
    options.threads = arguments.Integer(QStringLiteral("threads"), 0, 256).value_or(options.threads);
    options.hiddenMeshes = arguments.Texts(QStringLiteral("hide-mesh"));
    options.hiddenMaterials = arguments.Texts(QStringLiteral("hide-material"));
    if (arguments.Has(QStringLiteral("o"))) {
        options.fileName = arguments.RequiredText(QStringLiteral("o"));
        CheckFiles(arguments, verb, options);
    }
    return options;
}

bool IsSeries(const QString& fileName)
{
    return fileName.contains(NumberPlace());
}

QString NumberedFileName(const QString& fileName, int number)
{
    const QRegularExpressionMatch place = NumberPlace().match(fileName);
    if (!place.hasMatch()) return fileName;
    const QString digits = QString::number(number).rightJustified(place.captured(1).toInt(), QLatin1Char('0'));
    return QString(fileName).replace(place.capturedStart(), place.capturedLength(), digits);
}

QStringList OutputFiles(const RenderOptions& options)
{
    QStringList files;
    const int nFiles = IsSeries(options.fileName) ? options.take.nFrames : 1;
    for (int i = 0; i < nFiles; ++i)
        files += NumberedFileName(options.fileName, i);
    return files;
}

} // namespace Host
