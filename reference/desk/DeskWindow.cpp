#include "reference/desk/DeskWindow.h"

#include "lumenta/files/WholeFile.h"
#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/ISnapshotManager.h"
#include "lumenta/interfaces/IUploader.h"
#include "lumenta/platform/IFileDialog.h"
#include "lumenta/platform/IMeshNodeBuilder.h"
#include "lumenta/properties/ModelSourceImpl.h"
#include "lumenta/script/OutputHandlerHolder.h"
#include "lumenta/serializers/SceneSerializers.h"
#include "reference/desk/Exporting.h"
#include "reference/desk/Guarded.h"
#include "reference/desk/MaterialList.h"
#include "reference/desk/NodeTree.h"
#include "reference/desk/PropertyPanel.h"
#include "reference/desk/Publishing.h"
#include "reference/desk/RenderWindow.h"
#include "reference/desk/SceneView.h"
#include "reference/desk/ScriptOutput.h"
#include "reference/host/document/Navigator.h"
#include "reference/host/services/Application.h"
#include "reference/host/services/PictureFile.h"
#include "reference/host/services/SceneSetup.h"

#include <QCloseEvent>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDockWidget>
#include <QFileInfo>
#include <QMenuBar>
#include <QPointer>
#include <QProcess>
#include <QRegularExpression>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QVBoxLayout>

namespace Host {

namespace {

const QString kGeometry = QStringLiteral("window/geometry");
const QString kState = QStringLiteral("window/state");
const QString kScript = QStringLiteral("scripts/file");
const QString kArguments = QStringLiteral("scripts/arguments");

QDockWidget* Dock(QMainWindow& window, Qt::DockWidgetArea area, const QString& title, QWidget* pContent)
{
    auto* const pDock = new QDockWidget(title, &window);
    pDock->setObjectName(title);
    pDock->setWidget(pContent);
    window.addDockWidget(area, pDock);
    return pDock;
}

/// Whether the generator still makes what it makes when nothing is set.
bool IsUntouched(const IGenerator& generator)
{
    const QList<sGeneratorParameter> parameters = generator.GetParameters();
    for (const sGeneratorParameter& parameter : parameters)
        if (generator.GetValue(parameter.strName) != parameter.value) return false;
    return true;
}

/// A missing side is 0.
QSize SizeOf(const QString& text)
{
    static const QRegularExpression pattern(QStringLiteral("^\\s*(\\d{0,5})\\s*[xX]\\s*(\\d{0,5})\\s*$"));
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        throw InvalidParameterException(QStringLiteral("Render"), QStringLiteral("size"),
                                        QStringLiteral("'%1' is no size like 1200 x 900").arg(text));
    return {match.captured(1).toInt(), match.captured(2).toInt()};
}

} // namespace

DeskWindow::DeskWindow(Application& application)
    : m_application(application)
    , m_ui(*this, application.GetSettings())
    , m_document(application)
    , m_navigator(std::make_unique<Navigator>(*m_document.GetScene()))
{
    m_document.SetUserInterface(&m_ui);
    m_pView = new SceneView(application, m_document, application.CreateRenderer(QStringLiteral("painter")));
    m_pView->PushTool(m_navigator.get());
    m_pNodes = new NodeTree(m_document);
    m_pMaterials = new MaterialList(m_document);
    m_pProperties = new PropertyPanel(application, m_document);
    setCentralWidget(m_pView);
    Dock(*this, Qt::LeftDockWidgetArea, QStringLiteral("Nodes"), m_pNodes);
    Dock(*this, Qt::LeftDockWidgetArea, QStringLiteral("Materials"), m_pMaterials);
    Dock(*this, Qt::RightDockWidgetArea, QStringLiteral("Properties"), m_pProperties)->setMinimumWidth(260);
    m_pScriptOutput = new ScriptOutput;
    Dock(*this, Qt::BottomDockWidgetArea, QStringLiteral("Script"), m_pScriptOutput)->hide();
    connect(m_pMaterials, &MaterialList::chosen, m_pProperties, &PropertyPanel::ShowMaterial);
    connect(m_pView, &SceneView::fileDropped, this, [this](const QString& path) {
        const bool isModel = ModelSourceImpl(m_application.GetModelFormats(), &m_ui).AcceptsFile(path);
        if (!isModel || m_document.GetScene()->GetRoot()->GetChildren().empty()) return Open(path);
        Guarded(m_ui, [&] { AddModel(path); });
    });
    connect(m_document.GetScene(), &IScene::selectionChanged, this, &DeskWindow::ShowSelected);
    connect(m_document.GetScene(), &IScene::sceneChanged, this, [this](eSceneChangedFlags what) {
        if (what & eSceneChangedDocument) ShowTitle();
    });
    MakeMenus();
    ShowTitle();
    statusBar();
    resize(1100, 720);
    restoreGeometry(application.GetSettings() ? application.GetSettings()->GetValue(kGeometry, {}).toByteArray()
                                              : QByteArray());
    restoreState(application.GetSettings() ? application.GetSettings()->GetValue(kState, {}).toByteArray()
                                           : QByteArray());
}

DeskWindow::~DeskWindow()
{
    // They look into the document, which ends before a window's children would.
    delete m_pProperties;
    delete m_pMaterials;
    delete m_pNodes;
    delete m_pView;
}

// ----------------------------------------------------------------------- menus

void DeskWindow::AddAction(QMenu& menu, const QString& title, const QKeySequence& keys, void (DeskWindow::*work)())
{
    QAction* const pAction = menu.addAction(title);
    pAction->setShortcut(keys);
    connect(pAction, &QAction::triggered, this, [this, work] { Guarded(m_ui, [&] { (this->*work)(); }); });
}

void DeskWindow::MakeMenus()
{
    QMenu& file = *menuBar()->addMenu(QStringLiteral("&File"));
    AddAction(file, QStringLiteral("&New"), QKeySequence::New, &DeskWindow::New);
    AddAction(file, QStringLiteral("&Open..."), QKeySequence::Open, &DeskWindow::OpenFile);
    AddAction(file, QStringLiteral("&Save"), QKeySequence::Save, &DeskWindow::Save);
    AddAction(file, QStringLiteral("Save &As..."), QKeySequence::SaveAs, &DeskWindow::SaveAs);
    file.addSeparator();
    AddAction(file, QStringLiteral("&Import Model..."), {}, &DeskWindow::ImportModel);
    AddAction(file, QStringLiteral("&Export..."), {}, &DeskWindow::Export);
    AddAction(file, QStringLiteral("&Render..."), Qt::CTRL + Qt::Key_R, &DeskWindow::Render);
    AddAction(file, QStringLiteral("&Publish..."), {}, &DeskWindow::Publish);
    file.addSeparator();
    connect(file.addAction(QStringLiteral("&Quit")), &QAction::triggered, this, &QWidget::close);

    QMenu& insert = *menuBar()->addMenu(QStringLiteral("&Insert"));
    FillInsert(insert);
    QMenu& material = *menuBar()->addMenu(QStringLiteral("&Material"));
    AddAction(material, QStringLiteral("&New"), {}, &DeskWindow::NewMaterial);
    AddAction(material, QStringLiteral("&Assign to Selection"), {}, &DeskWindow::AssignMaterial);
    AddAction(material, QStringLiteral("&Remove"), {}, &DeskWindow::RemoveMaterial);
    QMenu& snapshots = *menuBar()->addMenu(QStringLiteral("&Snapshots"));
    connect(&snapshots, &QMenu::aboutToShow, this, [this, &snapshots] { FillSnapshots(snapshots); });
    QMenu& scripts = *menuBar()->addMenu(QStringLiteral("S&cripts"));
    AddAction(scripts, QStringLiteral("&Run..."), {}, &DeskWindow::RunScript);
}

void DeskWindow::FillInsert(QMenu& menu)
{
    const QStringList names = m_application.BuiltInNames();
    for (const QString& name : names)
        connect(menu.addAction(name), &QAction::triggered, this,
                [this, name] { Guarded(m_ui, [&] { Insert(name); }); });
}

void DeskWindow::FillSnapshots(QMenu& menu)
{
    qDeleteAll(menu.findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly)); // which outlive their entries
    menu.clear();
    ISnapshotManager* const pManager = m_document.GetScene()->GetSnapshotManager();
    const auto add = [this](QMenu& to, const QString& title, const std::function<void()>& work) {
        connect(to.addAction(title), &QAction::triggered, this, [this, work] { Guarded(m_ui, work); });
    };
    add(menu, QStringLiteral("&Take..."), [this, pManager] {
        QString name = QStringLiteral("Snapshot %1").arg(pManager->GetSnapshots().size() + 1);
        if (m_ui.AskText(QStringLiteral("Take a Snapshot"), QStringLiteral("Name:"), name)) pManager->Take(name);
    });
    menu.addSeparator();
    for (const ISnapshot* const pSnapshot : pManager->GetSnapshots()) {
        QMenu& own = *menu.addMenu(pSnapshot->GetName());
        add(own, QStringLiteral("Re&store"), [=] { pManager->Restore(pSnapshot); });
        add(own, QStringLiteral("Re&name..."), [=] {
            QString name = pSnapshot->GetName();
            if (m_ui.AskText(QStringLiteral("Rename the Snapshot"), QStringLiteral("Name:"), name))
                pManager->Rename(pSnapshot, name);
        });
        add(own, QStringLiteral("Re&move"), [=] { pManager->Remove(pSnapshot); });
    }
}

// ------------------------------------------------------------------- the file

void DeskWindow::New()
{
    if (!MayDiscard()) return;
    m_document.GetScene()->Clear();
    m_document.GetScene()->SetModified(false);
}

void DeskWindow::Open(const QString& strSource)
{
    if (!MayDiscard()) return;
    m_ui.ShowStatus(QString()); // what it says of the last document
    Guarded(m_ui, [&] { Warn(m_document.Open(strSource)); });
}

void DeskWindow::OpenFile()
{
    const std::unique_ptr<IFileDialog> dialog(m_ui.CreateFileDialog(eFileDialogAny, this));
    dialog->AddFilter(QStringLiteral("Scenes and models"), m_application.GetSerializers()->GetOpenableExtensions());
    const QString path = dialog->Show(QStringLiteral("Open"), QString(), QString());
    if (!path.isEmpty()) Open(path);
}

/// The document of a model has a file name, too, but nothing to save into.
bool DeskWindow::HasOwnFile() const
{
    const QString file = m_document.GetScene()->GetFileName();
    return !file.isEmpty() && CanSaveScene(m_application.GetSerializers(), file);
}

void DeskWindow::Save()
{
    if (HasOwnFile()) return SaveTo(m_document.GetScene()->GetFileName());
    SaveAs();
}

void DeskWindow::SaveAs()
{
    const QList<SerializerInfo> savers = m_application.GetSerializers()->GetSavers();
    if (savers.isEmpty()) throw SavingException(QStringLiteral("No plug-in that saves scenes is there"));
    const std::unique_ptr<IFileDialog> dialog(m_ui.CreateFileDialog(eFileDialogSave, this));
    for (const SerializerInfo& saver : savers)
        dialog->AddFilter(saver.title, {saver.extension});
    const QFileInfo present(m_document.GetScene()->GetFileName());
    const QString proposed = present.filePath().isEmpty() ? QString()
                                                          : QStringLiteral("%1/%2.%3")
                                                                .arg(present.absolutePath(), present.completeBaseName(),
                                                                     savers.front().extension);
    const QString path = dialog->Show(QStringLiteral("Save As"), QString(), proposed);
    if (!path.isEmpty()) SaveTo(path);
}

void DeskWindow::SaveTo(const QString& path)
{
    Warn(m_document.Save(path));
    m_ui.ShowStatus(QStringLiteral("Saved '%1'").arg(path));
}

bool DeskWindow::MayDiscard()
{
    if (!m_document.GetScene()->IsModified()) return true;
    int nChoice = 0;
    const QStringList choices{QStringLiteral("Save them"), QStringLiteral("Discard them")};
    if (!m_ui.AskChoice(QStringLiteral("There are changes that are not saved"), choices, nChoice)) return false;
    if (nChoice == 0) Guarded(m_ui, [this] { Save(); });
    return nChoice == 1 || !m_document.GetScene()->IsModified();
}

void DeskWindow::closeEvent(QCloseEvent* pEvent)
{
    const bool bMay = !m_ui.IsWorking() && MayDiscard(); // a work has hold of the document
    pEvent->setAccepted(bMay);
    ISettings* const pSettings = m_application.GetSettings();
    if (!bMay || !pSettings) return;
    pSettings->SetValue(kGeometry, saveGeometry());
    pSettings->SetValue(kState, saveState());
}

void DeskWindow::Warn(const QStringList& warnings)
{
    if (!warnings.isEmpty()) m_ui.ShowWarning(warnings.join(QLatin1Char('\n')));
}

void DeskWindow::ShowTitle()
{
    const QString file = m_document.GetScene()->GetFileName();
    const QString name = file.isEmpty() ? QStringLiteral("Untitled") : QFileInfo(file).fileName();
    setWindowTitle(name + QStringLiteral("[*] - Lumenta"));
    setWindowModified(m_document.GetScene()->IsModified());
}

void DeskWindow::ShowSelected()
{
    const std::vector<INode*>& nodes = m_document.GetScene()->GetSelection();
    m_pProperties->ShowNode(nodes.size() == 1 ? nodes.front() : nullptr);
}

// ------------------------------------------------------------------ the scene

void DeskWindow::ImportModel()
{
    PropertyWidgetHelper sources(m_application, m_document);
    const std::unique_ptr<IFileSource> models(sources.CreateFileSource(QStringLiteral("model")));
    QString path;
    if (models->ShowOpenDialog(this, path)) AddModel(path);
}

void DeskWindow::AddModel(const QString& path)
{
    Host::Scene& scene = *m_document.GetScene();
    INode* const pNode = scene.GetRoot()->CreateMesh(QFileInfo(path).completeBaseName(), path);
    scene.PlaceOnGround({pNode});
    scene.SetSelection({pNode});
    if (IImageManager* const pImages = m_application.GetImageManager()) Warn(LoadSceneImages(scene, *pImages));
}

void DeskWindow::Insert(const QString& name)
{
    Host::Scene& scene = *m_document.GetScene();
    const bool isFirst = scene.GetRoot()->GetChildren().empty();
    const QString source = QLatin1Char(':') + name;
    const std::unique_ptr<IGenerator> generator = m_application.CreateGenerator(source);
    if (generator) {
        QDialog dialog(this);
        dialog.setWindowTitle(QStringLiteral("Insert %1").arg(name));
        QDialogButtonBox buttons(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
        connect(&buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
        connect(&buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
        QVBoxLayout layout(&dialog);
        PropertyPanel panel(m_application, m_document);
        panel.ShowGenerator(generator.get());
        layout.addWidget(&panel);
        layout.addWidget(&buttons);
        if (dialog.exec() != QDialog::Accepted) return;
    }
    INode* pNode = nullptr;
    if (!generator || IsUntouched(*generator)) {
        pNode = scene.GetRoot()->CreateMesh(name, source); // a document can name where it came from
    } else {
        pNode = scene.GetRoot()->CreateGroup(name);
        const std::unique_ptr<IMeshNodeBuilder> builder(scene.CreateMeshBuilder(pNode));
        generator->Generate(*builder);
    }
    scene.SetSelection({pNode});
    if (isFirst) ShowAll(scene);
}

void DeskWindow::Render()
{
    const QSize usual = m_document.GetScene()->GetRenderSize();
    QString text = QStringLiteral("%1 x %2").arg(usual.width()).arg(usual.height());
    if (!m_ui.AskText(QStringLiteral("Render"), QStringLiteral("Size in pixels, width x height:"), text)) return;
    const QSize size = SizeOf(text);
    const std::unique_ptr<IRender> renderer = m_application.CreateRenderer(m_application.RendererNames().value(0));
    m_picture = ShowRendering(*m_document.GetScene(), *renderer, size, m_application, m_ui);
}

void DeskWindow::Export()
{
    ExportModel(*m_document.GetScene(), m_application.Plugins(), m_ui);
}

/// \return the document's own, or one of the last picture in `folder`; empty where
///         the user wants neither
QString DeskWindow::FileToPublish(const QString& folder)
{
    const QStringList choices{QStringLiteral("The document"), QStringLiteral("The last picture")};
    int nChoice = 0;
    if (!m_picture.isNull() && !m_ui.AskChoice(QStringLiteral("Publish what?"), choices, nChoice)) return {};
    const Host::Scene& scene = *m_document.GetScene();
    if (nChoice == 1) {
        const QString name = QFileInfo(scene.GetFileName()).completeBaseName();
        const QString path =
            QStringLiteral("%1/%2.png").arg(folder, name.isEmpty() ? QStringLiteral("Untitled") : name);
        WritePictureFile(path, m_picture);
        return path;
    }
    const auto isSaved = [&] { return HasOwnFile() && !scene.IsModified(); };
    if (!isSaved() && m_ui.AskYesNo(QStringLiteral("What is published is the saved document. Save it first?"))) Save();
    return isSaved() ? scene.GetFileName() : QString();
}

void DeskWindow::Publish()
{
    const std::vector<PluginService> services = m_application.Plugins().ServicesOf<IUploader>();
    if (services.empty()) throw Exception(QStringLiteral("No plug-in that publishes is there"));
    QStringList titles;
    for (const PluginService& service : services)
        titles += service.title;
    int nUploader = 0;
    if (titles.size() > 1 && !m_ui.AskChoice(QStringLiteral("Publish by"), titles, nUploader)) return;
    const QString id = services[static_cast<std::size_t>(nUploader)].id;
    const QTemporaryDir folder;
    const QString file = FileToPublish(folder.path());
    if (file.isEmpty()) return;
    const std::unique_ptr<IUploader> uploader = m_application.Plugins().CreateService<IUploader>(id);
    Host::Publish(*uploader, file, id, m_application.GetSettings(), m_ui);
}

void DeskWindow::RunScript()
{
    ISettings* const pSettings = m_application.GetSettings();
    const auto remembered = [&](const QString& name) {
        return pSettings ? pSettings->GetValue(name, QString()).toString() : QString();
    };
    const std::unique_ptr<IFileDialog> dialog(m_ui.CreateFileDialog(eFileDialogAny, this));
    dialog->AddFilter(QStringLiteral("Scripts"), {QStringLiteral("js")});
    const QString path = dialog->Show(QStringLiteral("Run a Script"), QString(), remembered(kScript));
    if (path.isEmpty()) return;
    QString arguments = remembered(kArguments);
    if (!m_ui.AskText(QStringLiteral("Run a Script"), QStringLiteral("Its arguments, parted by spaces (\"...\" around one that has some):"), arguments))
        return;
    if (pSettings) {
        pSettings->SetValue(kScript, path);
        pSettings->SetValue(kArguments, arguments);
    }
    const QString program = QString::fromUtf8(ReadAllFile(path));

    m_pScriptOutput->clear();
    m_pScriptOutput->parentWidget()->show();
    ScriptRunner& runner = *m_document.GetScriptRunner();
    runner.SetArguments(QProcess::splitCommand(arguments));
    const OutputHandlerHolder holder(runner, *m_pScriptOutput);
    const bool bDone = runner.Run(program, path);
    m_ui.ShowStatus(bDone ? QStringLiteral("The script has ended") : QStringLiteral("The script has failed"));
}

void DeskWindow::NewMaterial()
{
    m_document.GetScene()->CreateMaterial(QStringLiteral("Material"));
}

void DeskWindow::RemoveMaterial()
{
    if (IMaterial* const pMaterial = m_pMaterials->GetChosen()) m_document.GetScene()->RemoveMaterial(pMaterial);
}

void DeskWindow::AssignMaterial()
{
    IMaterial* const pMaterial = m_pMaterials->GetChosen();
    if (!pMaterial) return;
    Host::Scene& scene = *m_document.GetScene();
    scene.AssignMaterial(scene.GetSelection(), pMaterial);
}

} // namespace Host
