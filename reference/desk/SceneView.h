#pragma once

#include "lumenta/foundation/Vector.h"
#include "lumenta/interfaces/IRender.h"

#include <QImage>
#include <QTimer>
#include <QWidget>

#include <memory>
#include <vector>

class IApplicationContext;
class IDisplayEvents;
class IDocumentContext;

namespace Host {

/// Shows a scene from its camera and hands what a hand does to its tools.
///
/// Every change asks for a new picture; those that come together share one. While
/// changes follow each other closely pictures are coarse, then one is made in
/// full. What a renderer can't show stands in the tool tip.
class SceneView final : public QWidget {
    Q_OBJECT

public:
    /// \param application, document outlive the view; the document has a user interface
    SceneView(const IApplicationContext& application, IDocumentContext& document, std::unique_ptr<IRender> renderer,
              QWidget* pParent = nullptr);
    ~SceneView() override;

    /// From now on `pTool` is offered every event before the tools that were
    /// there. It is not owned, and outlives the view or is taken out.
    void PushTool(IDisplayEvents* pTool) { m_tools.push_back(pTool); }
    void RemoveTool(const IDisplayEvents* pTool);

    QSize sizeHint() const override { return {640, 480}; }

Q_SIGNALS:
    /// A file that is neither a material nor an image.
    void fileDropped(const QString& path);
    /// A picture of the present state is shown, in full.
    void shown();

protected:
    void paintEvent(QPaintEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;
    void mousePressEvent(QMouseEvent* pEvent) override;
    void mouseMoveEvent(QMouseEvent* pEvent) override;
    void mouseReleaseEvent(QMouseEvent* pEvent) override;
    void wheelEvent(QWheelEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;
    void dragEnterEvent(QDragEnterEvent* pEvent) override;
    void dropEvent(QDropEvent* pEvent) override;

private:
    TVec2<float> ViewSize() const;
    template <typename Event, typename F>
    void Offer(Event& event, const F& offer);
    void Follow();
    void Render(bool bCoarse);
    void OnDone(eRenderExitCode code);

    const IApplicationContext& m_application;
    IDocumentContext& m_document;
    std::vector<IDisplayEvents*> m_tools; ///< The active one last.
    QTimer m_soon;                        ///< Runs while changes gather.
    QTimer m_settled;                     ///< Runs until no change is near.
    QImage m_picture;
    QStringList m_leftOut;
    bool m_bRendering = false;
    bool m_bHurried = false;
    bool m_bCoarse = false;              ///< The last picture, or the one in the making.
    bool m_bStale = false;               ///< The scene has changed under it.
    std::unique_ptr<IRender> m_renderer; ///< Ends first.
};

} // namespace Host
