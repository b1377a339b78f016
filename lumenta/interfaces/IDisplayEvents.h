#pragma once

#include "lumenta/Export.h"
#include "lumenta/foundation/Vector.h"

#include <QObject>
#include <QPoint>

/// Gets what a hand does in the 3D view: a tool.
///
/// **Who implements it:** the host for its own tools, plug-ins for theirs.
/// **Who calls it:** the view, which offers every event to the active tool first
/// and then, if the answer was false, to the one below.
/// **Thread:** that of the view, which is the scene's. **Ownership:** stays with who
/// made it, who takes it away from the view before it ends.
///
/// Points are pixels of the view from its upper left corner; sizes are those of
/// the view, as picking takes them. True means that the event was used.
class LUMENTA_EXPORT IDisplayEvents : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~IDisplayEvents() override;

    /// A button went down.
    virtual bool OnMousePress(const QPoint& point, const TVec2<float>& viewSize, Qt::MouseButton button,
                              Qt::KeyboardModifiers modifiers) = 0;

    /// \param buttons those that are held down; none while the hand only passes
    virtual bool OnMouseMove(const QPoint& point, const TVec2<float>& viewSize, Qt::MouseButtons buttons,
                             Qt::KeyboardModifiers modifiers) = 0;

    /// A button went up.
    virtual bool OnMouseRelease(const QPoint& point, const TVec2<float>& viewSize, Qt::MouseButton button,
                                Qt::KeyboardModifiers modifiers) = 0;

    /// \param steps of the wheel away from the hand; parts of a step are possible
    virtual bool OnWheel(const QPoint& point, const TVec2<float>& viewSize, float steps,
                         Qt::KeyboardModifiers modifiers) = 0;

    /// \param nKey a Qt::Key
    virtual bool OnKeyPress(int nKey, Qt::KeyboardModifiers modifiers) = 0;
};
