#include "reference/host/document/FreeCamera.h"

#include "lumenta/foundation/CameraMatrices.h"
#include "reference/host/Caught.h"
#include "reference/host/Directions.h"

#include <algorithm>
#include <cmath>

namespace Host {

namespace {

constexpr float kLeast = 1e-4f;
constexpr float kMost = 1e15f;
constexpr float kMargin = 1.05f; ///< Of FrameBox(), as a factor of the box's extent in the picture.

sCameraState NewState()
{
    return {{0.0f, 0.0f, 0.0f}, 5.0f, 90.0f, 15.0f, 45.0f, 4.0f / 3.0f};
}

bool operator==(const sCameraState& a, const sCameraState& b)
{
    return a.target == b.target && a.distance == b.distance && a.heading == b.heading && a.pitch == b.pitch
           && a.fieldOfView == b.fieldOfView && a.frameAspect == b.frameAspect;
}

/// The value within its limits, or the one before where it is no number.
float Held(float value, float before, float least, float most)
{
    return std::isnan(value) ? before : std::clamp(value, least, most);
}

float Turned(float heading, float before)
{
    const float turned = std::remainder(heading, 360.0f);
    if (std::isnan(turned)) return before;
    return turned == -180.0f ? 180.0f : turned;
}

sCameraState WithinLimits(const sCameraState& wanted, const sCameraState& before)
{
    return {{Held(wanted.target.x, before.target.x, -kMost, kMost),
             Held(wanted.target.y, before.target.y, -kMost, kMost),
             Held(wanted.target.z, before.target.z, -kMost, kMost)},
            Held(wanted.distance, before.distance, kLeast, kMost),
            Turned(wanted.heading, before.heading),
            Held(wanted.pitch, before.pitch, -90.0f, 90.0f),
            Held(wanted.fieldOfView, before.fieldOfView, 1.0f, 170.0f),
            Held(wanted.frameAspect, before.frameAspect, kLeast, kMost)};
}

Matrix MatrixOf(const sCameraState& state)
{
    Matrix matrix;
    CalculateCameraMatrix(matrix, state.target, state.distance, state.heading, state.pitch);
    return matrix;
}

} // namespace

FreeCamera::FreeCamera(QObject* pParent)
    : IFreeCamera(pParent)
    , m_state(NewState())
    , m_home(NewState())
    , m_matrix(MatrixOf(m_state))
{
}

void FreeCamera::SetTarget(const TVec3<float>& target)
{
    sCameraState state = m_state;
    state.target = target;
    SetState(state);
}

void FreeCamera::SetDistance(float distance)
{
    sCameraState state = m_state;
    state.distance = distance;
    SetState(state);
}

void FreeCamera::SetAngles(float heading, float pitch)
{
    sCameraState state = m_state;
    state.heading = heading;
    state.pitch = pitch;
    SetState(state);
}

void FreeCamera::SetFieldOfView(float fieldOfView)
{
    sCameraState state = m_state;
    state.fieldOfView = fieldOfView;
    SetState(state);
}

void FreeCamera::SetFrameAspect(float frameAspect)
{
    sCameraState state = m_state;
    state.frameAspect = frameAspect;
    SetState(state);
}

void FreeCamera::Orbit(float heading, float pitch)
{
    sCameraState state = m_state;
    state.heading += heading;
    state.pitch += pitch;
    SetByHand(state);
}

void FreeCamera::Pan(float right, float up)
{
    const float height = 2.0f * m_state.distance * HalfFrame().y;
    const TVec3<float> left{m_matrix(1, 0), m_matrix(1, 1), m_matrix(1, 2)};
    const TVec3<float> above{m_matrix(2, 0), m_matrix(2, 1), m_matrix(2, 2)};
    sCameraState state = m_state;
    state.target = state.target - left * (right * height) + above * (up * height);
    SetByHand(state);
}

void FreeCamera::Zoom(float factor)
{
    if (!(factor > 0.0f)) return;
    sCameraState state = m_state;
    state.distance *= factor;
    SetByHand(state);
}

void FreeCamera::FrameBox(const TBBox<float>& box)
{
    if (box.IsEmpty()) return;
    sCameraState state = m_state;
    state.target = box.Center();
    const TVec3<float> half = box.HalfExtent();
    const TVec2<float> frame = HalfFrame();
    float distance = 0.0f;
    for (int nCorner = 0; nCorner < 8; ++nCorner) {
        const TVec3<float> corner{nCorner & 1 ? half.x : -half.x, nCorner & 2 ? half.y : -half.y,
                                  nCorner & 4 ? half.z : -half.z};
        const auto along = [&](int axis) {
            return Dot(corner, {m_matrix(axis, 0), m_matrix(axis, 1), m_matrix(axis, 2)});
        };
        const float aside = std::max(std::fabs(along(1)) / frame.x, std::fabs(along(2)) / frame.y);
        // Wide enough for the frame, and not in the face of a box that is narrow and deep.
        distance = std::max({distance, kMargin * aside - along(0), -kMargin * along(0)});
    }
    if (distance > 0.0f) state.distance = distance;
    SetByHand(state);
}

void FreeCamera::LookFrom(eCameraView view)
{
    struct Angles {
        float heading;
        float pitch;
    };
    static constexpr Angles kAngles[] = {{90.0f, 0.0f},  {-90.0f, 0.0f}, {0.0f, 0.0f},
                                         {180.0f, 0.0f}, {90.0f, 90.0f}, {-90.0f, -90.0f}};
    if (view < eCameraViewFront || view > eCameraViewBottom) return;
    sCameraState state = m_state;
    state.heading = kAngles[view].heading;
    state.pitch = kAngles[view].pitch;
    SetByHand(state);
}

void FreeCamera::LookAt(const TVec3<float>& position, const TVec3<float>& target)
{
    const TVec3<double> way = Widened(target) - Widened(position);
    const double distance = LengthOf(way);
    if (!(distance > 0.0)) return;
    const double level = std::hypot(way.x, way.y);
    constexpr double kDegrees = 57.29577951308232;
    sCameraState state = m_state;
    state.target = target;
    state.distance = static_cast<float>(std::min(distance, static_cast<double>(kMost)));
    state.pitch = static_cast<float>(std::atan2(-way.z, level) * kDegrees);
    if (level > 0.0) state.heading = static_cast<float>(std::atan2(way.y, way.x) * kDegrees);
    SetByHand(state);
}

void FreeCamera::SetState(const sCameraState& state)
{
    const sCameraState held = WithinLimits(state, m_state);
    if (held == m_state) return;
    m_state = held;
    m_matrix = MatrixOf(held);
    Tell("changed", [&] { Q_EMIT changed(); });
}

void FreeCamera::SetLocked(bool bLocked)
{
    if (bLocked == m_bLocked) return;
    m_bLocked = bLocked;
    Tell("changed", [&] { Q_EMIT changed(); });
}

void FreeCamera::Restart()
{
    const bool bWasLocked = m_bLocked;
    m_bLocked = false;
    m_home = NewState();
    if (m_state == m_home && bWasLocked)
        Tell("changed", [&] { Q_EMIT changed(); });
    else
        Reset();
}

void FreeCamera::SetByHand(const sCameraState& state)
{
    if (!m_bLocked) SetState(state);
}

TVec2<float> FreeCamera::HalfFrame() const
{
    const float height = std::tan(m_state.fieldOfView * 0.5f * kRadians);
    return {height * m_state.frameAspect, height};
}

} // namespace Host
