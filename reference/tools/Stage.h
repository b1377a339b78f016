#pragma once

#include "reference/host/Model.h"
#include "reference/host/services/Document.h"
#include "reference/tools/FrameSequence.h"
#include "reference/tools/ProgressBar.h"
#include "reference/tools/RenderOptions.h"

namespace Host {

/// How much of the whole work is done when a model has been read, and when all
/// its frames are planned; in percent.
constexpr double kLoaded = 5.0;
constexpr double kPlanned = 10.0;

/// A document, that of a model standing alone on the ground or any other, and
/// the frames in which it is to be seen.
class Stage {
public:
    /// Hides what the options hide and plans the frames. Textures are loaded
    /// where a picture is to be made; what could not be had is warned of.
    /// \throws Failure the subject is the model's file
    Stage(Model&& model, const RenderOptions& options, ProgressBar& bar);

    /// Leaves the document as it is, but for a floor that the options leave out.
    /// \param source it was opened from
    /// \throws Failure the subject is the source
    Stage(std::unique_ptr<Document> document, const QString& source, const RenderOptions& options, ProgressBar& bar);

    Scene& GetScene() { return *m_document->GetScene(); }

    FrameSequence& GetSequence() { return *m_sequence; }

    /// Places the model's own coordinates in the world; null for another document.
    const INode* GetModel() const { return m_model; }

private:
    std::unique_ptr<Document> m_document;
    INode* m_model = nullptr;
    std::optional<FrameSequence> m_sequence;
};

} // namespace Host
