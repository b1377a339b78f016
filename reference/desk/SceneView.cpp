#include "reference/desk/SceneView.h"

#include "lumenta/interfaces/IDisplayEvents.h"
#include "lumenta/interfaces/IFreeCamera.h"
#include "lumenta/interfaces/IScene.h"
#include "lumenta/interfaces/IUserInterface.h"
#include "lumenta/platform/IDocumentContext.h"
#include "reference/desk/Drops.h"
#include "reference/desk/Guarded.h"

#include <QDropEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>

namespace Host {

namespace {

constexpr int kGather = 15;   ///< Milliseconds.
constexpr int kSettled = 250; ///< Milliseconds without a change.
constexpr int kCoarse = 3;    ///< Pixels of the view to one of a coarse picture.

} // namespace

SceneView::SceneView(const IApplicationContext& application, IDocumentContext& document,
                     std::unique_ptr<IRender> renderer, QWidget* pParent)
    : QWidget(pParent)
    , m_application(application)
    , m_document(document)
    , m_renderer(std::move(renderer))
{
    setFocusPolicy(Qt::StrongFocus);
    setAcceptDrops(true);
    setMouseTracking(true);
    setMinimumSize(120, 90);
    m_soon.setSingleShot(true);
    m_soon.setInterval(kGather);
    m_settled.setSingleShot(true);
    m_settled.setInterval(kSettled);
    connect(&m_soon, &QTimer::timeout, this, [this] { Render(m_bHurried); });
    connect(&m_settled, &QTimer::timeout, this, [this] {
        if (m_bCoarse) Render(false);
    });
    connect(m_renderer.get(), &IRender::done, this, &SceneView::OnDone);
    connect(m_renderer.get(), &IRender::log, this, [this](const QString& line) { m_leftOut += line; });
    const IScene* const scene = document.GetScene();
    connect(scene, &IScene::afterSceneUpdate, this, &SceneView::Follow);
    connect(scene, &IScene::sceneChanged, this, &SceneView::Follow);
    connect(scene->GetCamera(), &IFreeCamera::changed, this, &SceneView::Follow);
    Follow();
}

SceneView::~SceneView()
{
    m_renderer->disconnect(this);
}

void SceneView::RemoveTool(const IDisplayEvents* pTool)
{
    m_tools.erase(std::remove(m_tools.begin(), m_tools.end(), pTool), m_tools.end());
}

// -------------------------------------------------------------------- pictures

void SceneView::Follow()
{
    m_bStale = true;
    m_bHurried = m_settled.isActive(); // there was a change just before
    m_settled.start();
    if (m_bRendering)
        m_renderer->Stop();
    else if (!m_soon.isActive())
        m_soon.start();
}

void SceneView::Render(bool bCoarse)
{
    if (m_bRendering || width() < 2 || height() < 2) return;
    m_bCoarse = bCoarse && !m_picture.isNull();
    m_bStale = false;
    m_bRendering = true;
    m_leftOut.clear();
    sRenderSettings settings;
    settings.size = m_bCoarse ? (size() / kCoarse).expandedTo({1, 1}) : size();
    if (!Guarded(*m_document.GetUserInterface(), [&] { m_renderer->Start(*m_document.GetScene(), settings); }))
        m_bRendering = false;
}

void SceneView::OnDone(eRenderExitCode code)
{
    m_bRendering = false;
    if (code == eRenderExitSuccess) m_picture = m_renderer->GetImage();
    if (code == eRenderExitFailed) m_document.GetUserInterface()->ShowStatus(m_leftOut.value(m_leftOut.size() - 1));
    setToolTip(m_leftOut.join(QLatin1Char('\n')));
    update();
    if (m_bStale) return m_soon.start();
    if (!m_bCoarse) Q_EMIT shown();
}

void SceneView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (m_picture.isNull())
        painter.fillRect(rect(), palette().mid());
    else
        painter.drawImage(rect(), m_picture);
}

void SceneView::resizeEvent(QResizeEvent*)
{
    Follow();
}

// ---------------------------------------------------------------------- events

TVec2<float> SceneView::ViewSize() const
{
    return {static_cast<float>(width()), static_cast<float>(height())};
}

/// To the active tool first, then to those below.
template <typename Event, typename F>
void SceneView::Offer(Event& event, const F& offer)
{
    bool bUsed = false;
    Guarded(*m_document.GetUserInterface(), [&] {
        const std::vector<IDisplayEvents*> tools = m_tools; // a tool may change them
        bUsed = std::any_of(tools.rbegin(), tools.rend(), [&](IDisplayEvents* pTool) { return offer(*pTool); });
    });
    event.setAccepted(bUsed);
}

void SceneView::mousePressEvent(QMouseEvent* pEvent)
{
    Offer(*pEvent, [&](IDisplayEvents& tool) {
        return tool.OnMousePress(pEvent->pos(), ViewSize(), pEvent->button(), pEvent->modifiers());
    });
}

void SceneView::mouseMoveEvent(QMouseEvent* pEvent)
{
    Offer(*pEvent, [&](IDisplayEvents& tool) {
        return tool.OnMouseMove(pEvent->pos(), ViewSize(), pEvent->buttons(), pEvent->modifiers());
    });
}

void SceneView::mouseReleaseEvent(QMouseEvent* pEvent)
{
    Offer(*pEvent, [&](IDisplayEvents& tool) {
        return tool.OnMouseRelease(pEvent->pos(), ViewSize(), pEvent->button(), pEvent->modifiers());
    });
}

void SceneView::wheelEvent(QWheelEvent* pEvent)
{
    const float steps = static_cast<float>(pEvent->angleDelta().y()) / 120.0f;
    Offer(*pEvent, [&](IDisplayEvents& tool) {
        return tool.OnWheel(pEvent->position().toPoint(), ViewSize(), steps, pEvent->modifiers());
    });
}

void SceneView::keyPressEvent(QKeyEvent* pEvent)
{
    Offer(*pEvent, [&](IDisplayEvents& tool) { return tool.OnKeyPress(pEvent->key(), pEvent->modifiers()); });
    if (!pEvent->isAccepted()) QWidget::keyPressEvent(pEvent);
}

void SceneView::dragEnterEvent(QDragEnterEvent* pEvent)
{
    if (IsForScene(*pEvent->mimeData())) pEvent->acceptProposedAction();
}

void SceneView::dropEvent(QDropEvent* pEvent)
{
    pEvent->acceptProposedAction();
    Guarded(*m_document.GetUserInterface(), [&] {
        const QString file = DropIntoScene(*pEvent->mimeData(), {pEvent->pos(), ViewSize()}, m_application, m_document);
        if (!file.isEmpty()) Q_EMIT fileDropped(file);
    });
}

} // namespace Host
