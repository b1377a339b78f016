#pragma once

#include "lumenta/interfaces/IDisplayEvents.h"

class IScene;

namespace Host {

/// The tool that is always there: moves the camera, selects, and does what a few
/// keys ask for.
///
/// | the hand | does |
/// |---|---|
/// | drag with the left button | orbits |
/// | drag with the middle button, or left with Shift | pans: the target follows the pointer |
/// | wheel | comes nearer to what is under the pointer, or goes away from it |
/// | click | selects what is under the pointer, or nothing |
/// | click with Ctrl | adds it to the selection or takes it out |
/// | F | frames the selection, or all that is visible |
/// | H, Delete | hides, removes the selection |
///
/// A drag begins a few pixels from where the button went down; until then it is
/// a click. Moves that no drag belongs to, other keys and keys with modifiers are
/// left to the tool below, and so are H and Delete while nothing is selected.
class Navigator final : public IDisplayEvents {
    Q_OBJECT

public:
    /// \param scene outlives the tool
    explicit Navigator(IScene& scene, QObject* pParent = nullptr);

    bool OnMousePress(const QPoint& point, const TVec2<float>& viewSize, Qt::MouseButton button,
                      Qt::KeyboardModifiers modifiers) override;
    bool OnMouseMove(const QPoint& point, const TVec2<float>& viewSize, Qt::MouseButtons buttons,
                     Qt::KeyboardModifiers modifiers) override;
    bool OnMouseRelease(const QPoint& point, const TVec2<float>& viewSize, Qt::MouseButton button,
                        Qt::KeyboardModifiers modifiers) override;
    bool OnWheel(const QPoint& point, const TVec2<float>& viewSize, float steps,
                 Qt::KeyboardModifiers modifiers) override;
    bool OnKeyPress(int nKey, Qt::KeyboardModifiers modifiers) override;

private:
    float FrameHeight(const TVec2<float>& viewSize) const;
    void Click(const QPoint& point, const TVec2<float>& viewSize, bool bToggle);
    void Frame();

    IScene& m_scene;
    Qt::MouseButton m_button = Qt::NoButton; ///< The one that holds the drag.
    bool m_bPanning = false;
    bool m_bDragged = false; ///< Whether it has become more than a click.
    QPoint m_pressed;
    QPoint m_last;
};

} // namespace Host
