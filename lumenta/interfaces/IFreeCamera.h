#pragma once

#include "lumenta/Export.h"
#include "lumenta/foundation/BBox.h"

#include <QObject>

struct Matrix;

/// Everything that a camera remembers, as one record to keep and put back.
struct sCameraState {
    TVec3<float> target{0.0f, 0.0f, 0.0f}; ///< What it orbits.
    float distance = 1.0f;                 ///< From the target.
    float heading = 0.0f;                  ///< IFreeCamera::GetHeading().
    float pitch = 0.0f;                    ///< IFreeCamera::GetPitch().
    float fieldOfView = 45.0f;             ///< IFreeCamera::GetFieldOfView().
    float frameAspect = 1.0f;              ///< IFreeCamera::GetFrameAspect().
};

/// The sides from which a camera can be told to look.
enum eCameraView {
    eCameraViewFront, ///< From −y, heading 90.
    eCameraViewBack,  ///< From +y, heading −90.
    eCameraViewLeft,  ///< From −x, heading 0.
    eCameraViewRight, ///< From +x, heading 180.
    eCameraViewTop,   ///< From +z, pitch 90, with +y up in the picture.
    eCameraViewBottom ///< From −z, pitch −90, with +y up in the picture.
};

/// The camera of a scene: it orbits a target.
///
/// The world is z-up. Heading turns about z: at 0 the camera looks along +x, at
/// 90 along +y. Positive pitch looks down onto the target. Angles are degrees,
/// lengths world units. In its own space the camera looks along x, has y to its
/// left and z above.
///
/// **Who implements it:** the host. **Who calls it:** views, tools, renderers,
/// and the library's camera matrices and picking, which only ask.
/// **Thread:** the scene's. **Ownership:** belongs to its scene.
///
/// A number that is none leaves the value as it was.
///
/// Every operation that changes a value emits `changed` once, after all values
/// have theirs; one that changes nothing emits nothing.
class LUMENTA_EXPORT IFreeCamera : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~IFreeCamera() override;

    // Where it is and where it looks.

    /// The point that it orbits and looks at.
    virtual const TVec3<float>& GetTarget() const = 0;

    /// Moves camera and target together.
    virtual void SetTarget(const TVec3<float>& target) = 0;

    /// From the camera to its target.
    virtual float GetDistance() const = 0;

    /// \param distance is held within what a camera of the host can do, which
    ///                 is above 0
    virtual void SetDistance(float distance) = 0;

    /// The turn about z: 0 looks along +x, 90 along +y.
    virtual float GetHeading() const = 0;
    /// How far it looks down: 90 is straight down.
    virtual float GetPitch() const = 0;

    /// \param heading is brought into (−180, 180]
    /// \param pitch   is held within −90 and 90
    virtual void SetAngles(float heading, float pitch) = 0;

    // What it sees.

    /// From the top of the frame to its bottom.
    virtual float GetFieldOfView() const = 0;

    /// Width over height of the frame, the part of any view that is sure to be
    /// seen: a view of another shape shows more on two sides.
    virtual float GetFrameAspect() const = 0;

    /// \param fieldOfView is held within 1 and 170
    virtual void SetFieldOfView(float fieldOfView) = 0;

    /// \param frameAspect is held above 0
    virtual void SetFrameAspect(float frameAspect) = 0;

    // How a hand moves it. A locked camera ignores these six.

    /// Turns about the target by these angles.
    virtual void Orbit(float heading, float pitch) = 0;

    /// Shifts camera and target along the picture.
    /// \param right, up  in heights of the frame at the target
    virtual void Pan(float right, float up) = 0;

    /// \param factor of the distance: below 1 comes nearer; not above 0 does nothing
    virtual void Zoom(float factor) = 0;

    /// Keeps the angles and stands where all of `box` fills the frame. Ignores
    /// an empty box.
    virtual void FrameBox(const TBBox<float>& box) = 0;

    /// Keeps target and distance.
    virtual void LookFrom(eCameraView view) = 0;

    /// Stands at `position` and looks at `target`. Two equal points change nothing.
    virtual void LookAt(const TVec3<float>& position, const TVec3<float>& target) = 0;

    // All of it at once.

    /// All values, as SetState() takes them.
    virtual sCameraState GetState() const = 0;

    /// Values are held within their limits as by the single setters.
    virtual void SetState(const sCameraState& state) = 0;

    /// Makes where it is now what Reset() comes back to.
    virtual void SetHome() = 0;

    /// Back to its home: where a new camera stands, until SetHome() is called.
    virtual void Reset() = 0;

    /// Whether a hand can't move it; setters can.
    virtual bool IsLocked() const = 0;
    virtual void SetLocked(bool bLocked) = 0;

    /// The camera's placement in the world: turned by the angles, standing
    /// `distance` before the target. The reference is good until `changed`.
    virtual const Matrix& GetMatrix() const = 0;

Q_SIGNALS:
    void changed(); ///< Some value is another one.
};
