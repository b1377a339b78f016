#include "reference/tools/Pictures.h"

#include "lumenta/foundation/Exceptions.h"
#include "reference/host/ContactSheet.h"
#include "reference/tools/Failure.h"
#include "reference/tools/ImageFile.h"
#include "reference/tools/ModelSource.h"
#include "reference/tools/Services.h"
#include "reference/tools/Texts.h"
#include "reference/tools/Toolkit.h"

#include <QFileInfo>

#include <cmath>

namespace Host {

namespace {

// Of the whole work, in percent.
constexpr double kLoaded = 5.0;
constexpr double kPosed = 10.0;

QString Caption(const Frame& frame, const Take& take)
{
    const auto rounded = [](float value) { return NumberText(std::round(static_cast<double>(value) * 10.0) / 10.0); };
    QStringList parts;
    if (take.animation)
        parts += rounded(frame.time) + QStringLiteral(" ms");
    if (take.turntable)
        parts += rounded(frame.azimuth) + QStringLiteral("°");
    return parts.join(QStringLiteral(", "));
}

/// Above a contact sheet: file and animation. Valid once the sequence is made,
/// which proves the animation's index.
QString TitleOf(const Model& model, const Take& take)
{
    const QString title = QFileInfo(model.fileName).fileName();
    if (!take.animation)
        return Printable(title);
    const QString name = model.scene->animations[static_cast<std::size_t>(*take.animation)]->name;
    return Printable(title + QStringLiteral(", ")
                     + (name.isEmpty() ? QStringLiteral("animation %1").arg(*take.animation) : name));
}

/// A picture in the place of what it is drawn from would destroy that.
void KeepInputs(const Model& model, const RenderOptions& options)
{
    const QSet<QString> inputs = InputFiles(model);
    const QStringList outputs = OutputFiles(options);
    for (const QString& output : outputs)
        if (inputs.contains(CanonicalPath(output)))
            throw Failure{output, QStringLiteral("would overwrite what the picture is drawn from")};
}

FrameSequence MakeSequence(Model& model, const Take& take, ProgressBar& bar)
{
    try {
        return FrameSequence(*model.scene, take, bar.Part(QStringLiteral("posing"), kLoaded, kPosed));
    } catch (const Exception& exception) {
        throw FailureOf(exception, model.fileName);
    }
}

QMap<QString, QImage> TexturesOf(const Model& model, ProgressBar& bar)
{
    QStringList problems = model.warnings;
    QMap<QString, QImage> textures = LoadTextures(model, problems);
    if (!problems.isEmpty())
        bar.Clear();
    for (const QString& problem : problems)
        PrintWarning(model.fileName, problem);
    return textures;
}

PictureRequest RequestOf(const RenderOptions& options, const FrameSequence& sequence,
                         const QMap<QString, QImage>& textures)
{
    PictureRequest request;
    request.textures = &textures;
    request.size = options.take.size;
    request.ground = options.ground;
    request.groundHeight = sequence.GetGroundHeight();
    request.samplesPerPixel = options.samplesPerPixel;
    request.threads = options.threads;
    return request;
}

/// Draws the frames one by one and hands each picture to `store`.
template <typename Store>
void Draw(FrameSequence& sequence, PictureRequest request, const RenderOptions& options, ProgressBar& bar,
          const Store& store)
{
    const auto renderer = CreateRenderer(options.renderer);
    const std::vector<Frame>& frames = sequence.GetFrames();
    const double share = (100.0 - kPosed) / static_cast<double>(frames.size());
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const double first = kPosed + share * static_cast<double>(i);
        const QString label = QStringLiteral("frame %1 of %2").arg(i + 1).arg(frames.size());
        request.meshes = &sequence.Pose(frames[i]);
        request.camera = frames[i].camera;
        store(static_cast<int>(i), renderer->Render(request, bar.Part(label, first, first + share)));
    }
}

} // namespace

void MakePictures(Model& model, const RenderOptions& options, ProgressBar& bar)
{
    Take take = options.take;
    take.up = options.up.value_or(model.up);
    KeepInputs(model, options);
    Hide(model, options.hiddenMeshes, options.hiddenMaterials);
    FrameSequence sequence = MakeSequence(model, take, bar);
    const QMap<QString, QImage> textures = TexturesOf(model, bar);
    const PictureRequest request = RequestOf(options, sequence, textures);
    try {
        if (IsSeries(options.fileName) || take.nFrames == 1) {
            Draw(sequence, request, options, bar, [&](int number, const QImage& picture) {
                WriteImageFile(NumberedFileName(options.fileName, number), picture);
            });
            return;
        }
        PrepareWriting();
        std::vector<SheetPicture> pictures;
        Draw(sequence, request, options, bar, [&](int number, const QImage& picture) {
            pictures.push_back({picture, Caption(sequence.GetFrames()[static_cast<std::size_t>(number)], take)});
        });
        WriteImageFile(options.fileName, MakeContactSheet(pictures, TitleOf(model, take)));
    } catch (const Exception& exception) {
        throw FailureOf(exception, options.fileName);
    }
}

} // namespace Host
