#pragma once

#include "lumenta/interfaces/IRender.h"
#include "reference/tools/ProgressBar.h"
#include "reference/tools/RenderOptions.h"

#include <memory>

namespace Host {

/// Makes pictures of a scene, one after another, with the renderer that the
/// options ask for. What it has to leave out is warned of, once.
class PictureMaker {
public:
    /// \param source of the model, for warnings
    /// \throws FactoryException there is no such renderer
    PictureMaker(const RenderOptions& options, const QString& source, ProgressBar& bar);

    /// \throws Failure the subject is the file that the options name
    QImage Draw(const IScene& scene, const Progress& progress);

private:
    void Wait();

    std::unique_ptr<IRender> m_renderer;
    sRenderSettings m_settings;
    QString m_fileName;
    QString m_source;
    ProgressBar& m_bar;
    Stopwatch* m_pStopwatch;
    QStringList m_said; ///< By the renderer.
};

} // namespace Host
