#pragma once

#include "lumenta/skin/Scene.h"
#include "reference/host/Picture.h"
#include "reference/host/Progress.h"

#include <QSize>

#include <optional>
#include <vector>

namespace Host {

/// What a sequence is to show.
struct Take {
    std::optional<int> animation; ///< An index. Without it, the pose the model came in.
    std::optional<float> time;    ///< Milliseconds; the same for all frames. Without it
                                  ///< they spread from the beginning of the animation to its end.
    int nFrames = 1;
    bool turntable = false; ///< The camera goes round once, anticlockwise as seen from above.
    float azimuth = 0.0f;   ///< Degrees, as FrameBox() takes them; where a turn begins.
    float elevation = 0.0f;
    TVec3<float> up{0.0f, 1.0f, 0.0f};
    QSize size; ///< Of one frame.
};

struct Frame {
    float time;
    float azimuth;
    Camera camera;
};

/// Frames that can be laid side by side or played: ground, target, distance
/// and field of view are the same in all of them, and the model is inside the
/// picture in each.
///
/// Poses the scene it was made for, which must outlive it.
class FrameSequence {
public:
    /// Poses every frame, to learn how much room the sequence takes.
    /// \throws InvalidParameterException the index names no animation
    /// \throws LoadingException nothing finite is to be seen in any frame
    FrameSequence(SkinAnimation::Scene& scene, const Take& take, const Progress& progress);

    const std::vector<Frame>& GetFrames() const { return m_frames; }

    /// The lowest point of all frames, along the up axis.
    float GetGroundHeight() const { return m_groundHeight; }

    /// What is to be seen in a frame. Valid until the next call.
    const std::vector<PosedMesh>& Pose(const Frame& frame);

private:
    template <typename Visitor>
    void ForEachPose(const Progress& progress, const Visitor& visit);
    TBBox<float> MeasureBox(const Progress& progress);
    void PlaceCameras(const TBBox<float>& box, const Take& take, const Progress& progress);

    SkinAnimation::Scene& m_scene;
    std::optional<int> m_animation;
    std::vector<Frame> m_frames;
    float m_groundHeight = 0.0f;
    MeshCollector m_collector;
    std::optional<float> m_posedTime; ///< Of what the collector holds.
};

} // namespace Host
