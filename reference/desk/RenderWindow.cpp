#include "reference/desk/RenderWindow.h"

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IFreeCamera.h"
#include "lumenta/interfaces/IImage.h"
#include "lumenta/interfaces/IImageManager.h"
#include "lumenta/interfaces/IRender.h"
#include "lumenta/interfaces/IScene.h"
#include "lumenta/platform/IApplicationContext.h"
#include "lumenta/platform/IFileDialog.h"
#include "lumenta/platform/IImageSaver.h"
#include "lumenta/render/RenderSizing.h"
#include "lumenta/serializers/ImageHelpers.h"
#include "reference/desk/Guarded.h"
#include "reference/desk/ShownProgress.h"

#include <QDialog>
#include <QEventLoop>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include <memory>
#include <optional>

namespace Host {

namespace {

QImage MakePicture(const IScene& scene, IRender& renderer, const QSize& size, IUserInterface& ui)
{
    const ShownProgress progress(ui, QStringLiteral("Rendering"));
    QEventLoop loop;
    std::optional<eRenderExitCode> code;
    QString said;
    QObject::connect(&renderer, &IRender::log, &loop, [&](const QString& line) { said = line; });
    QObject::connect(&renderer, &IRender::progress, &loop, [&](int nPercent) {
        if (!ui.SetProgress(nPercent)) renderer.Stop();
    });
    QObject::connect(&renderer, &IRender::done, &loop, [&](eRenderExitCode exitCode) {
        code = exitCode;
        loop.quit();
    });
    sRenderSettings settings;
    settings.size = size;
    renderer.Start(scene, settings);
    if (!code) loop.exec();
    if (code == eRenderExitFailed)
        throw LoadingException(said.isEmpty() ? QStringLiteral("The renderer failed") : said);
    ui.ShowStatus(said);
    if (!code) renderer.Stop(); // and nobody waits for the end of that
    QImage picture = renderer.GetImage();
    if (picture.isNull()) throw LoadingException(QStringLiteral("The renderer gave no picture"));
    return picture;
}

void SavePicture(const QImage& picture, IImageManager& images, IUserInterface& ui)
{
    const std::unique_ptr<IFileDialog> dialog(ui.CreateFileDialog(eFileDialogSave, nullptr));
    for (const ImageSaverInfo& info : images.GetSaverFormats())
        dialog->AddFilter(info.title, {info.extension});
    const QString path = dialog->Show(QStringLiteral("Save Picture"), QString(), QString());
    if (path.isEmpty()) return;
    const std::unique_ptr<IImageSaver> saver(CreateImageSaverByFilename(&images, path));
    if (!saver)
        throw ImageFormatException(QStringLiteral("'%1' can't be saved: its saver could not be made").arg(path));
    const auto release = [&images](IImage* pImage) { images.ReleaseImage(pImage); };
    const std::unique_ptr<IImage, decltype(release)> image(images.CreateImage(picture.size()), release);
    if (!image) throw ImageFormatException(QStringLiteral("'%1' can't be saved: no image could be made").arg(path));
    image->SetQImage(picture);
    saver->Save(*image, path, -1);
}

/// The picture as large as there is room for.
class Shown final : public QLabel {
public:
    explicit Shown(const QImage& picture)
        : m_picture(picture)
    {
        setMinimumSize(1, 1);
        setAlignment(Qt::AlignCenter);
    }

protected:
    void resizeEvent(QResizeEvent*) override
    {
        const QSize fitted = FitSizeToAnother(m_picture.size(), size());
        setPixmap(QPixmap::fromImage(m_picture.scaled(fitted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)));
    }

private:
    const QImage m_picture;
};

} // namespace

QImage ShowRendering(const IScene& scene, IRender& renderer, const QSize& size, const IApplicationContext& application,
                     IUserInterface& ui)
{
    const QSize adjusted = AdjustResolution(size, scene.GetCamera()->GetFrameAspect(), false);
    const QImage picture = MakePicture(scene, renderer, adjusted, ui);
    if (picture.isNull()) return picture;
    auto* const pWindow = new QDialog(qobject_cast<QWidget*>(ui.GetMainWindow()));
    pWindow->setAttribute(Qt::WA_DeleteOnClose);
    pWindow->setWindowTitle(QStringLiteral("Picture, %1 x %2").arg(picture.width()).arg(picture.height()));
    auto* const pLayout = new QVBoxLayout(pWindow);
    pLayout->setContentsMargins(0, 0, 0, 0);
    pLayout->addWidget(new Shown(picture), 1);
    int nExtra = 0;
    if (IImageManager* const pImages = application.GetImageManager()) {
        auto* const pSave = new QPushButton(QStringLiteral("Save..."));
        pLayout->addWidget(pSave, 0, Qt::AlignRight);
        QObject::connect(pSave, &QPushButton::clicked, pWindow,
                         [=, &ui] { Guarded(ui, [&] { SavePicture(picture, *pImages, ui); }); });
        nExtra = pSave->sizeHint().height() + pLayout->spacing();
    }
    const QSize room = QGuiApplication::primaryScreen()->availableSize() * 9 / 10;
    pWindow->resize(GetOptimalRenderWindowSize(picture.size(), {200, 150}, room, nExtra));
    pWindow->show();
    return picture;
}

} // namespace Host
