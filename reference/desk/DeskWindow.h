#pragma once

#include "reference/desk/UserInterface.h"
#include "reference/host/services/Document.h"

#include <QImage>
#include <QMainWindow>

#include <memory>

class QMenu;

namespace Host {

class Application;
class MaterialList;
class Navigator;
class NodeTree;
class PropertyPanel;
class SceneView;
class ScriptOutput;

/// The main window: one document, seen in a view, with its nodes, its materials
/// and the properties of what is chosen.
///
/// What goes wrong is shown and the document stays as it was.
class DeskWindow final : public QMainWindow {
    Q_OBJECT

public:
    /// \param application outlives the window
    /// \throws FactoryException, LoadingException there is no "painter" to show
    ///         the document with
    explicit DeskWindow(Application& application);
    ~DeskWindow() override;

    /// As if it had been chosen in the menu: a scene, a model, or what is built in.
    void Open(const QString& strSource);

    UserInterface& GetUserInterface() { return m_ui; }
    Document& GetDocument() { return m_document; }

protected:
    void closeEvent(QCloseEvent* pEvent) override;

private:
    void MakeMenus();
    void AddAction(QMenu& menu, const QString& title, const QKeySequence& keys, void (DeskWindow::*work)());
    void FillSnapshots(QMenu& menu);
    void FillInsert(QMenu& menu);

    // What the menus do; each may throw.
    void New();
    void OpenFile();
    void Save();
    void SaveAs();
    void ImportModel();
    void AddModel(const QString& path);
    void Insert(const QString& name);
    void Render();
    void Export();
    void Publish();
    void RunScript();
    void NewMaterial();
    void RemoveMaterial();
    void AssignMaterial();

    void SaveTo(const QString& path);
    bool HasOwnFile() const;
    QString FileToPublish(const QString& folder);
    bool MayDiscard();
    void ShowTitle();
    void ShowSelected();
    void Warn(const QStringList& warnings);

    Application& m_application;
    UserInterface m_ui;
    Document m_document;
    std::unique_ptr<Navigator> m_navigator;
    SceneView* m_pView;
    NodeTree* m_pNodes;
    MaterialList* m_pMaterials;
    PropertyPanel* m_pProperties;
    ScriptOutput* m_pScriptOutput;
    QImage m_picture; ///< The last that was rendered.
};

} // namespace Host
