#pragma once

#include "lumenta/Export.h"
#include "lumenta/foundation/Matrix.h"

class IFreeCamera;

/// \file
/// From the numbers of an orbiting camera to its matrices. The world is z-up;
/// in its own space a camera looks along x, has y to its left and z above.
/// Angles are degrees. Throws nothing. Reentrant, but for what asks an
/// IFreeCamera: that is called on the thread of its scene.

/// The projection of what the view matrix made: x to the right, y up, z
/// forward. All sixteen elements are written; w becomes the depth before the
/// camera.
///
/// The frame, the part of the picture that is sure to be seen, is fitted into
/// the view: m[0] and m[5] are those of the frame's height where the frame is
/// the narrower of the two, and are reduced where it is the wider one.
///
/// With f the cotangent of half the field of view, m[0] and m[5] are f / aspect and
/// f, or f / frameAspect and f / frameAspect · aspect where the frame is the wider
/// one (Akenine-Möller, Haines and others, "Real-Time Rendering", 2018, 4.7.2). Elements 10 and
/// 14 are zNear / (zFar − zNear) and zNear · zFar / (zNear − zFar), and renderers
/// rely on just these: z / w is −1 at zNear and 0 at zFar.
///
/// \param fov         of the frame, from its top to its bottom
/// \param frameAspect width over height of the frame
/// \param aspect      width over height of the view
/// \param zNear, zFar distances of the planes that bound the depth
LUMENTA_EXPORT void CalculateProjectionMatrix(Matrix& m, float fov, float frameAspect, float aspect, float zNear,
                                              float zFar);

/// The placement in the world of a camera that stands `distance` before
/// `target` and looks at it. Positive pitch looks down.
LUMENTA_EXPORT void CalculateCameraMatrix(Matrix& m, const TVec3<float>& target, float distance, float heading,
                                          float pitch);

/// From the world to the eye space of the projection, for a camera placed by
/// `camera`. Where that is singular `view` keeps what it held, which callers
/// depend on.
LUMENTA_EXPORT void CalculateViewMatrix(Matrix& view, const Matrix& camera);

/// Where CalculateCameraMatrix() places a camera of these values. The camera's
/// own matrix is not asked.
LUMENTA_EXPORT TVec3<float> GetCameraPosition(const IFreeCamera& camera);

/// Unit, from the camera towards its target.
LUMENTA_EXPORT TVec3<float> GetCameraDirection(const IFreeCamera& camera);
