#pragma once

#include "lumenta/foundation/BBox.h"
#include "lumenta/interfaces/IFreeCamera.h"
#include "reference/host/Progress.h"

#include <QSize>

#include <optional>
#include <vector>

class INode;
class IScene;

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
    QSize size; ///< Of one frame.
    bool ownCamera = false; ///< The scene's camera stays where it is; of one frame.
};

struct Frame {
    float time;
    float azimuth;
    sCameraState camera;
};

/// Frames that can be laid side by side or played: target, distance and field
/// of view of the camera are the same in all of them, and the model is inside
/// the picture in each.
///
/// Poses the scene it was made for, and moves its camera. The scene must outlive it.
class FrameSequence {
public:
    /// Poses every frame, to learn how much room the sequence takes. Then moves
    /// the model to stand on z = 0 with its lowest point of all frames.
    ///
    /// Picking sees 10,000 units far, in single precision. So what is more than
    /// 1,000 units large, or less than 0.01, is scaled by a power of ten, in
    /// pictures taller than wide as if it were as much larger; and what would stand more than 1,000 units from the z axis is moved there.
    /// Anything else keeps its size and its x and y.
    /// \param pModel an upright node under the root, which all meshes hang under;
    ///               or null: then nothing moves, and the scene may be empty for
    ///               its own camera
    /// \throws InvalidParameterException the index names no animation
    /// \throws LoadingException nothing finite is to be seen in any frame
    FrameSequence(IScene& scene, INode* pModel, const Take& take, const Progress& progress);

    const std::vector<Frame>& GetFrames() const { return m_frames; }

    /// Brings the scene and its camera to this frame.
    void Show(const Frame& frame);

private:
    template <typename Visitor>
    void ForEachPose(const Progress& progress, const Visitor& visit);
    TBBox<float> MeasureBox(const Progress& progress);
    void PlaceCameras(const TBBox<float>& box, const Take& take, const Progress& progress);

    IScene& m_scene;
    int m_animation; ///< −1 for the rest pose.
    std::vector<Frame> m_frames;
};

} // namespace Host
