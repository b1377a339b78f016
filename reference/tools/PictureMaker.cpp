#include "reference/tools/PictureMaker.h"

#include "reference/tools/Failure.h"
#include "reference/tools/Services.h"
#include "reference/tools/Texts.h"
#include "reference/tools/Toolkit.h"

#include <QEventLoop>

#include <optional>

namespace Host {

namespace {

std::unique_ptr<IRender> CreateRenderer(const RenderOptions& options)
{
    const Timed timed(options.pStopwatch, eStagePlugins);
    return TheApplication().CreateRenderer(options.renderer);
}

} // namespace

PictureMaker::PictureMaker(const RenderOptions& options, const QString& source, ProgressBar& bar)
    : m_renderer(CreateRenderer(options))
    , m_settings{options.take.size, options.samplesPerPixel, options.threads}
    , m_fileName(options.fileName)
    , m_source(source)
    , m_bar(bar)
    , m_pStopwatch(options.pStopwatch)
{
}

QImage PictureMaker::Draw(const IScene& scene, const Progress& progress)
{
    std::optional<eRenderExitCode> code;
    QStringList lines;
    const QObject listener; // ends before what it writes to
    QObject::connect(m_renderer.get(), &IRender::done, &listener,
                     [&](eRenderExitCode exitCode) { code = exitCode; }); // clazy:exclude=lambda-in-connect
    QObject::connect(m_renderer.get(), &IRender::log, &listener,
                     [&](const QString& line) { lines += line; }); // clazy:exclude=lambda-in-connect
    if (progress) QObject::connect(m_renderer.get(), &IRender::progress, &listener, progress);
    const Timed timed(m_pStopwatch, eStagePreparing);
    if (m_pStopwatch)
        QObject::connect(m_renderer.get(), &IRender::progress, &listener, [this](int nPercent) {
            if (nPercent > 0) m_pStopwatch->Begin(eStageDrawing);
        });

    m_renderer->Start(scene, m_settings);
    if (!code) Wait();
    if (code == eRenderExitFailed)
        throw Failure{m_fileName, lines.isEmpty() ? QStringLiteral("the renderer failed") : lines.last()};
    for (const QString& line : qAsConst(lines)) {
        if (m_said.contains(line)) continue;
        m_said += line;
        m_bar.Clear();
        PrintWarning(m_source, line);
    }
    QImage picture = m_renderer->GetImage();
    if (picture.isNull()) throw Failure{m_fileName, QStringLiteral("the renderer gave no picture")};
    return picture;
}

void PictureMaker::Wait()
{
    PrepareToolkit(); // events need it
    QEventLoop loop;
    QObject::connect(m_renderer.get(), &IRender::done, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace Host
