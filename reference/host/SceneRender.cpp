#include "reference/host/SceneRender.h"

#include "lumenta/foundation/Exceptions.h"
#include "reference/host/ScenePicture.h"

#include <exception>

namespace Host {

SceneRender::SceneRender(std::unique_ptr<IPictureRenderer> renderer)
    : m_renderer(std::move(renderer))
{
}

void SceneRender::Start(const IScene& scene, const sRenderSettings& settings)
{
    if (m_isRunning)
        throw LogicException(QStringLiteral("IRender::Start: the last picture is not done"));
    m_isRunning = true;
    m_image = QImage();
    m_isStopWanted = false;
    m_wasStopped = false;
    m_percent = -1;
    QString failure;
    eRenderExitCode code = eRenderExitFailed;
    try {
        code = Draw(scene, settings);
    } catch (const Exception& exception) {
        failure = exception.GetErrorText();
    } catch (const std::exception& exception) {
        failure = QString::fromLocal8Bit(exception.what());
    } catch (...) {
        failure = QStringLiteral("The picture failed for an unknown reason");
    }
    if (code == eRenderExitFailed)
        Q_EMIT log(failure);
    m_isRunning = false;
    Q_EMIT done(code);
}

void SceneRender::Stop()
{
    m_isStopWanted = m_isRunning;
}

QImage SceneRender::GetImage() const
{
    return m_image;
}

eRenderExitCode SceneRender::Draw(const IScene& scene, const sRenderSettings& settings)
{
    Tell(0);
    ScenePicture picture(scene, settings);
    PictureRequest& request = picture.GetRequest();
    if (request.size.isEmpty())
        throw InvalidParameterException(QStringLiteral("IRender::Start"), QStringLiteral("settings"),
                                        QStringLiteral("Neither they nor the scene have a size."));
    request.isStopped = [this] { return m_wasStopped = m_isStopWanted; };
    const QStringList leftOut = m_renderer->GetLeftOut(request);
    for (const QString& line : leftOut)
        Q_EMIT log(line);
    m_image = m_renderer->Render(request, [this](int nPercent) { Tell(nPercent); });
    return m_wasStopped ? eRenderExitStopped : eRenderExitSuccess;
}

void SceneRender::Tell(int nPercent)
{
    if (nPercent <= m_percent)
        return;
    m_percent = nPercent;
    Q_EMIT progress(nPercent);
}

} // namespace Host
