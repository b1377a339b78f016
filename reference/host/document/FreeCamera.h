#pragma once

#include "lumenta/foundation/Matrix.h"
#include "lumenta/interfaces/IFreeCamera.h"

namespace Host {

/// The scene's camera. A new one looks from the front and a little above at the
/// origin, 5 away, and has its home there.
///
/// Values that are no numbers are ignored. Distance and frame aspect are held
/// within 1e-4 and 1e15.
class FreeCamera final : public IFreeCamera {
    Q_OBJECT

public:
    explicit FreeCamera(QObject* pParent = nullptr);

    const TVec3<float>& GetTarget() const override { return m_state.target; }
    void SetTarget(const TVec3<float>& target) override;
    float GetDistance() const override { return m_state.distance; }
    void SetDistance(float distance) override;
    float GetHeading() const override { return m_state.heading; }
    float GetPitch() const override { return m_state.pitch; }
    void SetAngles(float heading, float pitch) override;
    float GetFieldOfView() const override { return m_state.fieldOfView; }
    float GetFrameAspect() const override { return m_state.frameAspect; }
    void SetFieldOfView(float fieldOfView) override;
    void SetFrameAspect(float frameAspect) override;

    void Orbit(float heading, float pitch) override;
    void Pan(float right, float up) override;
    void Zoom(float factor) override;
    /// Leaves a twentieth around the box. The distance to a single point stays.
    void FrameBox(const TBBox<float>& box) override;
    void LookFrom(eCameraView view) override;
    /// Looking straight up or down keeps the heading.
    void LookAt(const TVec3<float>& position, const TVec3<float>& target) override;

    sCameraState GetState() const override { return m_state; }
    void SetState(const sCameraState& state) override;
    /// Emits nothing: no value that can be asked for changes.
    void SetHome() override { m_home = m_state; }
    void Reset() override { SetState(m_home); }
    bool IsLocked() const override { return m_bLocked; }
    void SetLocked(bool bLocked) override;
    const Matrix& GetMatrix() const override { return m_matrix; }

    /// As new: state, home and lock.
    void Restart();

private:
    void SetByHand(const sCameraState& state);
    /// Half the frame's width and height, one unit away.
    TVec2<float> HalfFrame() const;

    sCameraState m_state;
    sCameraState m_home;
    Matrix m_matrix;
    bool m_bLocked = false;
};

} // namespace Host
