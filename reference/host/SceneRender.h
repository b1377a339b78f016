#pragma once

#include "lumenta/interfaces/IRender.h"
#include "reference/host/Picture.h"

#include <memory>

namespace Host {

/// Draws scenes with any renderer of pictures. Start() returns when the picture
/// is done; `progress` is emitted where its number has grown.
///
/// Has no meta-object of its own: it is an IRender, in whichever module.
class SceneRender : public IRender {
public:
    explicit SceneRender(std::unique_ptr<IPictureRenderer> renderer);

    void Start(const IScene& scene, const sRenderSettings& settings) override;
    void Stop() override;
    QImage GetImage() const override;

private:
    eRenderExitCode Draw(const IScene& scene, const sRenderSettings& settings);
    void Tell(int nPercent);

    const std::shared_ptr<IPictureRenderer> m_renderer; ///< Shared with Start(), which may outlast this.
    QImage m_image;
    bool m_isRunning = false;
    bool m_isStopWanted = false;
    bool m_wasStopped = false; ///< With something left to do.
    int m_percent = -1;        ///< Told last.
};

} // namespace Host
