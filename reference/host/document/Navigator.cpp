#include "reference/host/document/Navigator.h"

#include "lumenta/foundation/Matrix.h"
#include "lumenta/interfaces/IFreeCamera.h"
#include "lumenta/interfaces/IScene.h"
#include "lumenta/scene/BoundingBoxes.h"
#include "lumenta/scene/Picking.h"

#include <QPointer>

#include <algorithm>
#include <cmath>

namespace Host {

namespace {

constexpr int kClickReach = 4; ///< Pixels that a hand may tremble in a click.
constexpr float kDegreesPerPixel = 0.4f;
constexpr float kFactorPerStep = 0.85f; ///< Of the distance.

void Hide(IScene& scene, const std::vector<INode*>& nodes)
{
    const std::vector<QPointer<INode>> pending(nodes.begin(), nodes.end()); // slots may remove some
    sSceneModifications planned;
    planned.strTitle = QStringLiteral("Hide objects");
    scene.BeginUpdate(planned);
    for (const QPointer<INode>& pNode : pending)
        if (pNode) pNode->SetVisible(false);
    scene.EndUpdate();
}

} // namespace

Navigator::Navigator(IScene& scene, QObject* pParent)
    : IDisplayEvents(pParent)
    , m_scene(scene)
{
}

bool Navigator::OnMousePress(const QPoint& point, const TVec2<float>&, Qt::MouseButton button,
                             Qt::KeyboardModifiers modifiers)
{
    if (m_button != Qt::NoButton || (button != Qt::LeftButton && button != Qt::MiddleButton)) return false;
    m_button = button;
    m_bPanning = button == Qt::MiddleButton || modifiers.testFlag(Qt::ShiftModifier);
    m_bDragged = false;
    m_pressed = m_last = point;
    return true;
}

bool Navigator::OnMouseMove(const QPoint& point, const TVec2<float>& viewSize, Qt::MouseButtons buttons,
                            Qt::KeyboardModifiers)
{
    if (!buttons.testFlag(m_button)) // released where nobody told us
        m_button = Qt::NoButton;
    if (m_button == Qt::NoButton) return false;
    m_bDragged = m_bDragged || (point - m_pressed).manhattanLength() >= kClickReach;
    if (!m_bDragged) return true;
    const auto right = static_cast<float>(point.x() - m_last.x());
    const auto down = static_cast<float>(point.y() - m_last.y());
    m_last = point;
    const float height = FrameHeight(viewSize);
    if (m_bPanning)
        m_scene.GetCamera()->Pan(-right / height, down / height);
    else
        m_scene.GetCamera()->Orbit(-right * kDegreesPerPixel, down * kDegreesPerPixel);
    return true;
}

bool Navigator::OnMouseRelease(const QPoint& point, const TVec2<float>& viewSize, Qt::MouseButton button,
                               Qt::KeyboardModifiers modifiers)
{
    if (button != m_button || button == Qt::NoButton) return false;
    m_button = Qt::NoButton;
    if (!m_bDragged && !m_bPanning) Click(point, viewSize, modifiers.testFlag(Qt::ControlModifier));
    return true;
}

bool Navigator::OnWheel(const QPoint& point, const TVec2<float>& viewSize, float steps, Qt::KeyboardModifiers)
{
    // What is under the pointer, in the target's plane, stays there.
    const float factor = std::pow(kFactorPerStep, steps);
    const float height = FrameHeight(viewSize);
    const float right = (static_cast<float>(point.x()) - viewSize.x * 0.5f) / height;
    const float up = (viewSize.y * 0.5f - static_cast<float>(point.y())) / height;
    IFreeCamera& camera = *m_scene.GetCamera();
    camera.Pan(right * (1.0f - factor), up * (1.0f - factor));
    camera.Zoom(factor);
    return true;
}

bool Navigator::OnKeyPress(int nKey, Qt::KeyboardModifiers modifiers)
{
    if ((modifiers & ~Qt::KeypadModifier) != Qt::NoModifier) return false;
    if (nKey == Qt::Key_F) {
        Frame();
        return true;
    }
    const std::vector<INode*> selection = m_scene.GetSelection();
    if (selection.empty() || (nKey != Qt::Key_H && nKey != Qt::Key_Delete)) return false;
    if (nKey == Qt::Key_H)
        Hide(m_scene, selection);
    else
        m_scene.RemoveNodes(selection);
    return true;
}

/// In pixels of the view, in which the frame is fitted.
float Navigator::FrameHeight(const TVec2<float>& viewSize) const
{
    return std::max(1.0f, std::min(viewSize.y, viewSize.x / m_scene.GetCamera()->GetFrameAspect()));
}

void Navigator::Click(const QPoint& point, const TVec2<float>& viewSize, bool bToggle)
{
    INode* pNode = nullptr;
    const IMesh* pMesh = nullptr;
    FindNodeByScreenPoint(point, viewSize, m_scene, pNode, pMesh);
    if (!bToggle)
        m_scene.SetSelection({pNode});
    else if (pNode)
        m_scene.SetSelected(pNode, !m_scene.IsSelected(pNode));
}

void Navigator::Frame()
{
    TBBox<float> box;
    for (const INode* pNode : m_scene.GetSelection())
        box.Extend(ComputeNodeBBox(pNode));
    if (m_scene.GetSelection().empty()) UpdateBBoxRecursive(box, m_scene.GetRoot(), Matrix());
    m_scene.GetCamera()->FrameBox(box);
}

} // namespace Host
