#include "reference/tools/FrameSequence.h"

#include "lumenta/foundation/Exceptions.h"
#include "reference/host/Directions.h"

#include <algorithm>
#include <cmath>

namespace Host {

namespace {

/// The animation's duration. For a wrong index 0: posing will complain.
float DurationOf(const SkinAnimation::Scene& scene, std::optional<int> animation)
{
    const auto index = static_cast<std::size_t>(animation.value_or(-1));
    return index < scene.animations.size() ? scene.animations[index]->duration : 0.0f;
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

float LowestAlong(const TVec3<float>& up, const TBBox<float>& box)
{
    return std::min(up.x * box.min.x, up.x * box.max.x) + std::min(up.y * box.min.y, up.y * box.max.y)
           + std::min(up.z * box.min.z, up.z * box.max.z);
}

} // namespace

template <typename Visitor>
void FrameSequence::ForEachPose(const Progress& progress, const Visitor& visit)
{
    int nDone = 0;
    for (const Frame& frame : m_frames) {
        visit(frame, Pose(frame));
        progress(100 * ++nDone / static_cast<int>(m_frames.size()));
    }
}

FrameSequence::FrameSequence(SkinAnimation::Scene& scene, const Take& take, const Progress& progress)
    : m_scene(scene)
    , m_animation(take.animation)
    , m_frames(PlanFrames(take, DurationOf(scene, take.animation)))
{
    const auto half = [&progress](int first) {
        return [&progress, first](int percent) {
            if (progress)
                progress(first + percent / 2);
        };
    };
    const TBBox<float> box = MeasureBox(half(0));
    if (box.IsEmpty())
        throw LoadingException(QStringLiteral("no frame holds a triangle that could be drawn"));
    m_groundHeight = LowestAlong(take.up, box);
    PlaceCameras(box, take, half(50));
}

const std::vector<PosedMesh>& FrameSequence::Pose(const Frame& frame)
{
    if (m_posedTime == frame.time)
        return m_collector.meshes;

    m_posedTime.reset();
    if (m_animation)
        m_scene.CalculateAnimation(*m_animation, frame.time);
    m_collector.BeginModel(QString(), m_scene.nodes.size());
    m_scene.CreateMeshes(m_collector);
    m_collector.EndModel();
    m_posedTime = frame.time;
    return m_collector.meshes;
}

TBBox<float> FrameSequence::MeasureBox(const Progress& progress)
{
    TBBox<float> box;
    ForEachPose(progress, [&](const Frame&, const std::vector<PosedMesh>& meshes) { box.Extend(BoxOf(meshes)); });
    return box;
}

void FrameSequence::PlaceCameras(const TBBox<float>& box, const Take& take, const Progress& progress)
{
    for (Frame& frame : m_frames)
        frame.camera = FrameBox(box, take.up, frame.azimuth, take.elevation, take.size);

    // The box is larger than what fills it. One distance for all frames keeps the model's size.
    float farthest = 0.0f;
    ForEachPose(progress, [&](const Frame& frame, const std::vector<PosedMesh>& meshes) {
        farthest = std::max(farthest, DistanceToSee(meshes, frame.camera, take.size));
    });
    for (Frame& frame : m_frames) {
        const TVec3<float> back = UnitOr(frame.camera.eye - frame.camera.target, {});
        frame.camera.eye = frame.camera.target + back * farthest;
    }
}

} // namespace Host
