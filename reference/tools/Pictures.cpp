#include "reference/tools/Pictures.h"

#include "lumenta/foundation/Exceptions.h"
#include "reference/host/ContactSheet.h"
#include "reference/tools/Failure.h"
#include "reference/tools/FrameClock.h"
#include "reference/tools/ImageFile.h"
#include "reference/tools/DocumentSource.h"
#include "reference/tools/ModelSource.h"
#include "reference/tools/OutputFile.h"
#include "reference/tools/PictureMaker.h"
#include "reference/tools/Stage.h"
#include "reference/tools/Texts.h"
#include "reference/tools/Toolkit.h"

#include <QFileInfo>

#include <cmath>

namespace Host {

namespace {

QString Caption(const Frame& frame, const Take& take)
{
    const auto rounded = [](float value) { return NumberText(std::round(static_cast<double>(value) * 10.0) / 10.0); };
    QStringList parts;
    if (take.animation) parts += rounded(frame.time) + QStringLiteral(" ms");
    if (take.turntable) parts += rounded(frame.azimuth) + QStringLiteral("°");
    return parts.join(QStringLiteral(", "));
}

/// Above a contact sheet: file and animation.
QString TitleOf(const QString& source, const IScene& scene, const Take& take)
{
    const QString title = QFileInfo(source).fileName();
    if (!take.animation) return Printable(title);
    const QString name = scene.GetAnimations()[static_cast<std::size_t>(*take.animation)].strName;
    return Printable(title + QStringLiteral(", ")
                     + (name.isEmpty() ? QStringLiteral("animation %1").arg(*take.animation) : name));
}

/// Draws the frames one by one and hands each picture to `store`.
template <typename Store>
void Draw(Stage& stage, PictureMaker& maker, ProgressBar& bar, const Store& store)
{
    const std::vector<Frame>& frames = stage.GetSequence().GetFrames();
    const double share = (100.0 - kPlanned) / static_cast<double>(frames.size());
    FrameClock clock(static_cast<int>(frames.size()));
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const double first = kPlanned + share * static_cast<double>(i);
        const auto label = [&clock](int nPercent) { return clock.Text(nPercent); };
        clock.NextFrame();
        stage.GetSequence().Show(frames[i]);
        store(static_cast<int>(i), maker.Draw(stage.GetScene(), bar.Part(label, first, first + share)));
    }
}

/// Draws and writes what the options ask for.
void WritePictures(Stage& stage, const QString& source, const RenderOptions& options, ProgressBar& bar)
{
    PictureMaker maker(options, source, bar);
    if (IsSeries(options.fileName) || options.take.nFrames == 1) {
        Draw(stage, maker, bar, [&](int number, const QImage& picture) {
            const Timed timed(options.pStopwatch, eStageWriting);
            WriteImageFile(NumberedFileName(options.fileName, number), picture);
        });
        return;
    }
    PrepareToolkit();
    std::vector<SheetPicture> pictures;
    Draw(stage, maker, bar, [&](int number, const QImage& picture) {
        const Frame& frame = stage.GetSequence().GetFrames()[static_cast<std::size_t>(number)];
        pictures.push_back({picture, Caption(frame, options.take)});
    });
    const Timed timed(options.pStopwatch, eStageWriting);
    WriteImageFile(options.fileName, MakeContactSheet(pictures, TitleOf(source, stage.GetScene(), options.take)));
}

void MakePictures(Stage&& stage, const QString& source, const RenderOptions& options, ProgressBar& bar)
{
    try {
        WritePictures(stage, source, options, bar);
    } catch (const Exception& exception) {
        throw FailureOf(exception, options.fileName);
    }
}

} // namespace

void MakePictures(Model&& model, const RenderOptions& options, ProgressBar& bar)
{
    const QString source = model.fileName;
    KeepInputs(InputFiles(model), OutputFiles(options), kDrawnFrom);
    MakePictures(Stage(std::move(model), options, bar), source, options, bar);
}

void MakePictures(std::unique_ptr<Document> document, const QString& source, const RenderOptions& options,
                  ProgressBar& bar)
{
    KeepInputs(InputFiles(*document->GetScene(), source), OutputFiles(options), kDrawnFrom);
    MakePictures(Stage(std::move(document), source, options, bar), source, options, bar);
}

} // namespace Host
