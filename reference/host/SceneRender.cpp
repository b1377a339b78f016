#include "reference/host/SceneRender.h"

#include "lumenta/foundation/Exceptions.h"
#include "reference/host/Caught.h"
#include "reference/host/ScenePicture.h"

#include <QPointer>

namespace Host {

SceneRender::SceneRender(std::unique_ptr<IPictureRenderer> renderer)
    : m_renderer(std::move(renderer))
{
}

void SceneRender::Start(const IScene& scene, const sRenderSettings& settings)
{
    if (m_isRunning)
        throw LogicException(QStringLiteral("IRender::Start: the last picture is not done"));
    const QPointer<SceneRender> self = this; // slots may delete it
    const std::shared_ptr<IPictureRenderer> renderer = m_renderer;
    m_isRunning = true;
    m_image = QImage();
    m_isStopWanted = false;
    m_wasStopped = false;
    m_percent = -1;
    QString failure;
    eRenderExitCode code = eRenderExitFailed;
    try {
        code = Draw(scene, settings);
    } catch (...) {
        failure = CaughtText();
    }
    if (self && code == eRenderExitFailed)
        Host::Tell("log", [&] { Q_EMIT log(failure); });
    if (!self)
        return;
    m_isRunning = false;
    Host::Tell("done", [&] { Q_EMIT done(code); });
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
    const QPointer<SceneRender> self = this;
    Tell(0);
    if (!self)
        return eRenderExitStopped;
    ScenePicture picture(scene, settings);
    PictureRequest& request = picture.GetRequest();
    if (request.size.isEmpty())
        throw InvalidParameterException(QStringLiteral("IRender::Start"), QStringLiteral("settings"),
                                        QStringLiteral("Neither they nor the scene have a size."));
    request.isStopped = [self] { return !self || (self->m_wasStopped = self->m_isStopWanted); };
    const QStringList leftOut = m_renderer->GetLeftOut(request);
    for (const QString& line : leftOut)
        if (self) Host::Tell("log", [&] { Q_EMIT log(line); });
    if (!self)
        return eRenderExitStopped;
    QImage image = m_renderer->Render(request, [self](int nPercent) {
        if (self) self->Tell(nPercent);
    });
    if (!self)
        return eRenderExitStopped;
    m_image = image;
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
