#include "lumenta/foundation/CameraMatrices.h"

#include "lumenta/interfaces/IFreeCamera.h"

#include <cmath>

namespace {

constexpr float kDegreesToRadians = 0.017453292f;

/// The rotations about x, y and z of a camera. Rotations about y lift what
/// looks along x; pitch lowers it.
TVec3<float> CameraAngles(float heading, float pitch)
{
    return {0.0f, -pitch, heading};
}

TVec3<float> PositionOf(const TVec3<float>& target, float distance, float heading, float pitch)
{
    return target - DirectionFromAngles(CameraAngles(heading, pitch)) * distance;
}

} // namespace

void CalculateProjectionMatrix(Matrix& m, float fov, float frameAspect, float aspect, float zNear, float zFar)
{
    const float f = 1.0f / std::tan(fov * kDegreesToRadians * 0.5f);
    const float g = f / frameAspect;
    const bool frameIsWider = f > g * aspect;
    m = {{frameIsWider ? g : f / aspect, 0.0f, 0.0f, 0.0f,
          0.0f, frameIsWider ? g * aspect : f, 0.0f, 0.0f,
          0.0f, 0.0f, zNear / (zFar - zNear), 1.0f,
          0.0f, 0.0f, zNear * zFar / (zNear - zFar), 0.0f}};
}

void CalculateCameraMatrix(Matrix& m, const TVec3<float>& target, float distance, float heading, float pitch)
{
    m.SetIdentity();
    m.SetTranslation(PositionOf(target, distance, heading, pitch));
    m.SetRotation(CameraAngles(heading, pitch));
}

void CalculateViewMatrix(Matrix& view, const Matrix& camera)
{
    // Where the axes of the eye space point in the camera's own: right, up, forward.
    static constexpr Matrix kEyeToCamera = {{0.0f, -1.0f, 0.0f, 0.0f,
                                             0.0f, 0.0f, 1.0f, 0.0f,
                                             1.0f, 0.0f, 0.0f, 0.0f,
                                             0.0f, 0.0f, 0.0f, 1.0f}};
    Inverse(view, kEyeToCamera * camera);
}

TVec3<float> GetCameraPosition(const IFreeCamera& camera)
{
    return PositionOf(camera.GetTarget(), camera.GetDistance(), camera.GetHeading(), camera.GetPitch());
}

TVec3<float> GetCameraDirection(const IFreeCamera& camera)
{
    return DirectionFromAngles(CameraAngles(camera.GetHeading(), camera.GetPitch()));
}
