#include "reference/tools/RenderOptions.h"

#include "reference/host/ContactSheet.h"
#include "reference/tools/Failure.h"
#include "reference/tools/ImageFile.h"
#include "reference/tools/Services.h"

#include <QRegularExpression>

#include <algorithm>

namespace Host {

namespace {

constexpr int kMostPixels = 16384; ///< Along one side.
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

QSize ReadSize(const Arguments& arguments)
{
    const QString option = QStringLiteral("size");
    if (!arguments.Has(option)) return {512, 512};
    static const QRegularExpression pattern(QStringLiteral("\\A([0-9]{1,6})x([0-9]{1,6})\\z"));
    const QRegularExpressionMatch match = pattern.match(arguments.Text(option));
    const QSize size(match.captured(1).toInt(), match.captured(2).toInt());
    if (!match.hasMatch() || size.isEmpty() || size.width() > kMostPixels || size.height() > kMostPixels)
        arguments.RejectValue(option, QStringLiteral("a size from 1x1 to %1x%1").arg(kMostPixels));
    return size;
}

TVec3<float> AxisOf(const QString& letter)
{
    return {letter == QLatin1String("x") ? 1.0f : 0.0f, letter == QLatin1String("y") ? 1.0f : 0.0f,
            letter == QLatin1String("z") ? 1.0f : 0.0f};
}

Take ReadTake(const Arguments& arguments)
{
    Take take;
    take.size = ReadSize(arguments);
    take.turntable = arguments.Has(QStringLiteral("turntable"));
    take.nFrames =
        arguments.Integer(QStringLiteral("frames"), 1, kMostFrames).value_or(take.turntable ? kTurntableFrames : 1);
    if (const auto time = arguments.Number(QStringLiteral("time"), 0.0, kLongestTime))
        take.time = static_cast<float>(*time);
    if (take.time && take.nFrames > 1 && !take.turntable)
        arguments.Reject(QStringLiteral("--time and --frames exclude each other without --turntable"));
    take.azimuth = static_cast<float>(arguments.Number(QStringLiteral("azimuth"), -360.0, 360.0).value_or(30.0));
    take.elevation = static_cast<float>(arguments.Number(QStringLiteral("elevation"), -89.0, 89.0).value_or(15.0));
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
    for (const QString& fileName : OutputFiles(options))
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
        option("size", "WxH", "Width and height of each picture in pixels, at most 16384. The usual size is 512x512."),
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
               "front, 90 the model's left side. Usually 30."),
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

RenderOptions ReadRenderOptions(const Arguments& arguments, const QString& verb)
{
    RenderOptions options;
    options.take = ReadTake(arguments);
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
