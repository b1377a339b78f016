#pragma once

#include "reference/host/document/Scene.h"
#include "reference/host/Model.h"
#include "reference/tools/FrameSequence.h"
#include "reference/tools/ProgressBar.h"
#include "reference/tools/RenderOptions.h"

namespace Host {

/// How much of the whole work is done when a model has been read, and when all
/// its frames are planned; in percent.
constexpr double kLoaded = 5.0;
constexpr double kPlanned = 10.0;

/// A document that holds one model, standing on the ground, and the frames in
/// which it is to be seen.
class Stage {
public:
    /// Hides what the options hide and plans the frames. Textures are loaded
    /// where a picture is to be made; what could not be had is warned of.
    /// \throws Failure the subject is the model's file
    Stage(Model&& model, const RenderOptions& options, ProgressBar& bar);

    Scene& GetScene() { return m_scene; }

    FrameSequence& GetSequence() { return *m_sequence; }

    /// From the model's own coordinates to the world.
    const Matrix& GetPlacement() const { return m_model->GetMatrix(); }

private:
    Scene m_scene;
    INode* m_model = nullptr;
    std::optional<FrameSequence> m_sequence;
};

} // namespace Host
