#include "reference/tools/FrameSequence.h"

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/foundation/Matrix.h"
#include "lumenta/interfaces/INode.h"
#include "lumenta/interfaces/IScene.h"
#include "reference/host/Directions.h"
#include "reference/host/ScenePicture.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace Host {

namespace {

constexpr double kSmallest = 0.01;
constexpr double kLargest = 1000.0;
constexpr TVec3<float> kUp{0.0f, 0.0f, 1.0f};

/// The animation's duration. For a wrong index 0: posing will complain.
float DurationOf(const IScene& scene, int animation)
{
    const std::vector<sAnimationInfo> animations = scene.GetAnimations();
    const auto index = static_cast<std::size_t>(animation);
    return index < animations.size() ? animations[index].length : 0.0f;
}

std::vector<Frame> PlanFrames(const Take& take, float duration)
{
    std::vector<Frame> frames;
    for (int i = 0; i < take.nFrames; ++i) {
        const float played = take.nFrames > 1 ? static_cast<float>(i) / static_cast<float>(take.nFrames - 1) : 0.0f;
        const float turned = take.turntable ? static_cast<float>(i) / static_cast<float>(take.nFrames) : 0.0f;
        frames.push_back({take.time ? *take.time : played * duration, take.azimuth + turned * 360.0f, {}});
    }
    return frames;
}

double AspectOf(QSize size)
{
    return static_cast<double>(size.width()) / static_cast<double>(size.height());
}

/// What a model is scaled by whose largest side takes so much of the world.
/// Tall pictures are taken from farther away, as larger models are.
double ScaleFor(double size, double aspect)
{
    constexpr double kMostDigits = 37.0; // what a float holds
    const double wanted = size / std::min(aspect, 1.0);
    if (!(wanted > 0.0) || (wanted >= kSmallest && wanted <= kLargest)) return 1.0;
    return std::pow(10.0, std::clamp(-std::floor(std::log10(wanted)), -kMostDigits, kMostDigits));
}

/// How what takes the room `box` is moved to stand on z = 0 near the z axis,
/// after scaling.
Matrix PlacementOf(const TBBox<float>& box, double aspect)
{
    const TVec3<double> min = Widened(box.min);
    const TVec3<double> max = Widened(box.max);
    const double scale = ScaleFor(std::max({max.x - min.x, max.y - min.y, max.z - min.z}), aspect);
    const auto shift = [scale](double from, double to) {
        const double middle = (from + to) * 0.5 * scale;
        return static_cast<float>(std::fabs(middle) > kLargest ? -middle : 0.0);
    };
    Matrix placement;
    for (int axis = 0; axis < 3; ++axis)
        placement(axis, axis) = static_cast<float>(scale);
    placement.SetTranslation({shift(min.x, max.x), shift(min.y, max.y), static_cast<float>(-min.z * scale)});
    return placement;
}

TBBox<float> Moved(const TBBox<float>& box, const Matrix& placement)
{
    TBBox<float> moved = box;
    TransformPoint(moved.min, placement);
    TransformPoint(moved.max, placement);
    return moved;
}

} // namespace

template <typename Visitor>
void FrameSequence::ForEachPose(const Progress& progress, const Visitor& visit)
{
    std::unique_ptr<ScenePicture> posed;
    std::optional<float> posedTime;
    int nDone = 0;
    for (Frame& frame : m_frames) {
        if (posedTime != frame.time) {
            m_scene.SetAnimation(m_animation, frame.time);
            posed = std::make_unique<ScenePicture>(m_scene, sRenderSettings{});
            posedTime = frame.time;
        }
        visit(frame, *posed->GetRequest().meshes);
        progress(100 * ++nDone / static_cast<int>(m_frames.size()));
    }
}

FrameSequence::FrameSequence(IScene& scene, INode* pModel, const Take& take, const Progress& progress)
    : m_scene(scene)
    , m_animation(take.animation.value_or(-1))
    , m_frames(PlanFrames(take, DurationOf(scene, m_animation)))
{
    if (take.ownCamera) {
        m_frames.front().camera = scene.GetCamera()->GetState();
        return;
    }
    const auto half = [&progress](int first) {
        return [&progress, first](int percent) {
            if (progress) progress(first + percent / 2);
        };
    };
    const TBBox<float> box = MeasureBox(half(0));
    if (box.IsEmpty()) throw LoadingException(QStringLiteral("no frame holds a triangle that could be drawn"));
    const Matrix placement = pModel ? PlacementOf(box, AspectOf(take.size)) : Matrix();
    if (pModel) pModel->SetMatrix(pModel->GetMatrix() * placement);
    PlaceCameras(Moved(box, placement), take, half(50));
}

void FrameSequence::Show(const Frame& frame)
{
    m_scene.SetAnimation(m_animation, frame.time);
    m_scene.GetCamera()->SetState(frame.camera);
}

TBBox<float> FrameSequence::MeasureBox(const Progress& progress)
{
    TBBox<float> box;
    ForEachPose(progress, [&](const Frame&, const std::vector<PosedMesh>& meshes) { box.Extend(BoxOf(meshes)); });
    return box;
}

void FrameSequence::PlaceCameras(const TBBox<float>& box, const Take& take, const Progress& progress)
{
    // The box is larger than what fills it. One distance for all frames keeps the model's size.
    float farthest = 0.0f;
    ForEachPose(progress, [&](Frame& frame, const std::vector<PosedMesh>& meshes) {
        const Camera camera = FrameBox(box, kUp, frame.azimuth, take.elevation, take.size);
        farthest = std::max(farthest, DistanceToSee(meshes, camera, take.size));
        // With heading 90 it looks at the front.
        frame.camera = {camera.target,
                        0.0f,
                        90.0f + frame.azimuth,
                        take.elevation,
                        camera.verticalFieldOfView,
                        static_cast<float>(AspectOf(take.size))};
    });
    for (Frame& frame : m_frames)
        frame.camera.distance = farthest;
}

} // namespace Host
