// Dialogs, panels and drops, answered as a hand would, and materials dragged with a
// real pointer into another process. All of it on a display that nobody sees.

#include "lumenta/files/WholeFile.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/interfaces/ISnapshotManager.h"
#include "lumenta/interfaces/IUploader.h"
#include "lumenta/materials/MaterialXml.h"
#include "reference/desk/DeskWindow.h"
#include "reference/desk/Drops.h"
#include "reference/desk/FileField.h"
#include "reference/desk/MaterialList.h"
#include "reference/desk/PropertyPanel.h"
#include "reference/desk/Publishing.h"
#include "reference/desk/SceneView.h"
#include "reference/host/images/Image.h"
#include "reference/host/services/Application.h"
#include "tests/foundation/Exact.h"
#include "tests/serializers/ServiceStandIns.h"

#include <QtWidgets>

#include <csignal>
#include <sys/prctl.h>

using namespace Host;

// Assimp and D-Bus leave memory behind when they are stopped.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() { return "leak:libassimp\nleak:libdbus"; }

namespace {

const QString kCube = QStringLiteral("/usr/share/assimp/models/X/test_cube_text.x");

/// What the next dialog is told. Another dialog, or none, ends the program.
template <typename Dialog, typename F>
void OnNext(const F& answer) { QTimer::singleShot(0, qApp, [=] { answer(dynamic_cast<Dialog&>(*QApplication::activeModalWidget())); }); }

void Confirm(QMessageBox& box) { box.accept(); }

void Choose(const QMainWindow& window, const QString& menu, const QString& title)
{
    const QList<QAction*> tops = window.menuBar()->actions();
    for (QAction* const top : tops) Q_EMIT top->menu()->aboutToShow();
    const QList<QMenu*> menus = window.findChildren<QMenu*>();
    for (QMenu* const each : menus) {
        const QList<QAction*> actions = each->actions();
        for (QAction* const action : actions) if (each->title() == menu && action->text() == title) return action->trigger();
    }
    qFatal("there is no '%s' in '%s'", qPrintable(title), qPrintable(menu));
}

void Type(QInputDialog& box, const QString& text) { box.setTextValue(text), box.accept(); }

void Drop(QWidget& onto, const QMimeData& mime)
{
    QDragEnterEvent enter(onto.rect().center(), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QDropEvent drop(onto.rect().center(), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&onto, &enter), QApplication::sendEvent(&onto, &drop);
}

/// Ends with this process, also where that is killed.
struct Child final : QProcess {
    ~Child() override { waitForFinished(5000); }
    void setupChildProcess() override { prctl(PR_SET_PDEATHSIG, SIGKILL); }
};

struct FileData final : QMimeData { explicit FileData(const QString& path) { setUrls({QUrl::fromLocalFile(path)}); } };

/// An application with images, and a document whose scene is stored in a folder.
struct Desk final : IApplicationContext {
    QTemporaryDir folder;
    Application application{{LUMENTA_PLUGINS}, folder.filePath("settings.ini")};
    QMainWindow window;
    UserInterface ui{window, application.GetSettings()};
    Document document{application};
    Host::Scene& scene = *document.GetScene();
    Image image;
    mutable StandIn::ImageManager images;
    PropertyPanel panel{*this, document};

    Desk() { images.loaders = {{"t", "", {"png"}}}, images.image = &image, document.SetUserInterface(&ui), scene.SetFileName(Path("s.xml")); }
    QString Path(const QString& name) const { return folder.filePath(name); }
    template <typename Widget> Widget& Row(const char* title) { return *panel.widget()->findChild<Widget*>(title); }
    // clang-format off: nothing to be read here
    IImageManager* GetImageManager() const override { return &images; } ILog* GetLog() const override { StandIn::No(); }
    const IModelFormats* GetModelFormats() const override { return application.GetModelFormats(); }
    const ISerializersRegistry* GetSerializers() const override { StandIn::No(); } ISettings* GetSettings() const override { StandIn::No(); }
    // clang-format on
};

struct Generator final : IGenerator {
    QVariant sides = 3;
    void Generate(IMeshNodeBuilder&) override {}
    QList<sGeneratorParameter> GetParameters() const override { return {{"sides", "Sides", 3, 3, 9}}; }
    QList<sGeneratorPreset> GetPresets() const override { return {{"Brick", {{"sides", 4}}}, {"Nut", {{"sides", 6}}}}; }
    QVariant GetValue(const QString&) const override { return sides; }
    void SetValue(const QString& name, const QVariant& value) override { value == 7 ? throw FactoryException(name) : sides = value; }
};

/// What is chosen where "a.one" and "sub/b.two" are, and what can be read in the dialog.
/// \param typed empty for what is proposed, "!" to cancel
QString Chosen(int kind, const QString& start, const QString& typed, QMessageBox::StandardButton confirmed = {})
{
    Desk desk;
    TrySaveDataToFile(desk.Path("a.one"), {}), TrySaveDataToFile(desk.Path("sub/b.two"), {});
    const QScopedPointer<IFileDialog> dialog(desk.ui.CreateFileDialog(kind, nullptr));
    dialog->AddFilter("Ones", {"one", "uno"}), dialog->AddFilter("Twos", {"two"});
    QString read;
    OnNext<QFileDialog>([&](QFileDialog& shown) {
        read = '|' + shown.findChild<QLabel*>("explanation")->text() + '|' + shown.nameFilters().join('|');
        if (!typed.isEmpty()) shown.findChild<QLineEdit*>("fileNameEdit")->setText(typed);
        if (confirmed) OnNext<QMessageBox>([=](QMessageBox& box) { box.button(confirmed)->click(); });
        if (typed != "!") static_cast<QDialog&>(shown).accept();
        if (shown.isVisible()) shown.reject();
    });
    return dialog->Show("Title", "Why", desk.Path(start)).mid(desk.folder.path().size()) + read;
}

/// Gives one answer after another, none of them for "", chooses one folder, and notes what it is told and asked.
struct Person final : StandIn::UserInterface {
    QStringList answers;
    explicit Person(const QStringList& given) : answers(given) { answer = "/new"; }
    bool Answers(const QString& question) { return asked += question, !answers.value(0).isEmpty() || (answers.removeFirst(), false); }
    bool AskText(const QString&, const QString& label, QString& text) override { return Answers(label) && (text = answers.takeFirst(), true); }
    bool AskChoice(const QString& title, const QStringList&, int& choice) override { return Answers(title) && (choice = answers.takeFirst().toInt(), true); }
    bool AskYesNo(const QString& question) override { return Answers(question) && answers.takeFirst() == "yes"; }
    // clang-format off
    bool SetProgress(int percent) override { return percent < 50; } bool OpenUrl(const QUrl& url) override { return asked += "open " + url.toString(), true; }
    void ShowWarning(const QString& text) override { asked += text; } void ShowError(const QString& text) override { asked += text; }
    void BeginProgress(const QString&) override {} void EndProgress() override {} void ShowStatus(const QString&) override {}
    // clang-format on
};

/// Says one word after another, each when it is spoken to.
struct Uploader final : IUploader {
    Person& person;
    QStringList words;
    Uploader(Person& owner, const QString& text) : person(owner), words(text.split(' ')) {}
    void Speak()
    {
        const QString word = words.takeFirst();
        if (word == "done") return Q_EMIT done("u:1"); // before it returns
        const QMap<QString, std::function<void()>> said{{"%", [=] { Q_EMIT progress(60); }}, {"pin", [=] { Q_EMIT urlForPin("u:2"); }},
            {"auth", [=] { Q_EMIT failedAuth(); }}, {"settings", [=] { Q_EMIT requestSettings(); }}, {"failed", [=] { Q_EMIT failed("No room"); }}};
        QTimer::singleShot(0, this, said[word]);
    }
    void Upload(const QString& file, const QMap<QString, QVariant>& with) override { person.asked += file + "->" + with["folder"].toString() + with["pin"].toString(), Speak(); }
    void SetPin(const QString& pin) override { words.value(0) == "none" ? IUploader::SetPin(pin) : (person.asked += "pin " + pin, Speak()); }
    void Cancel() override { person.asked += "cancel", Q_EMIT failed("Cancelled"); }
};

/// What is heard of an upload where "/last" was used before, and what is kept for the next.
QString Published(const QString& words, const QStringList& answers)
{
    Desk desk;
    Person person(answers);
    ISettings& settings = *desk.application.GetSettings();
    settings.SetValue("publish/x/folder", "/last");
    try { Publish(*QScopedPointer<Uploader>(new Uploader(person, words)), "f", "x", &settings, person); } catch (const Exception& exception) { person.asked += '!' + exception.GetErrorText(); }
    return person.asked.join('|') + '>' + settings.GetValue("publish/x/folder", {}).toString();
}

/// Another program's, which knows of a drop only what it can read of it, and says so.
struct Target final : QWidget {
    int Wait()
    {
        setAcceptDrops(true), setGeometry(400, 0, 200, 200), show();
        QTextStream(stdout) << (QTest::qWaitForWindowExposed(this) ? "ready\n" : "");
        return QApplication::exec();
    }
    void dragEnterEvent(QDragEnterEvent* event) override { event->acceptProposedAction(); }
    void dropEvent(QDropEvent* event) override
    {
        const QString path = event->mimeData()->urls().value(0).toLocalFile();
        QString name;
        QMap<QString, QVariant> parameters;
        if (path.endsWith(".mtl")) ReadMaterial(ReadAllFile(path), name, parameters);
        QTextStream(stdout) << event->mimeData()->text() << '|' << path << '|' << QFile::exists(path) << '|' << name
                            << '|' << parameters.size() << parameters["opacity"].toString();
        event->acceptProposedAction(), QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    }
};

} // namespace

class DeskTest : public QObject {
    Q_OBJECT

private:
    /// What is said of a drag from a row of the list to the right, where the other program stands.
    static QString Dragged(const QListWidget& list, int row)
    {
        Child receiver, hand;
        receiver.start(QCoreApplication::applicationFilePath(), {"receiver"});
        if (!receiver.waitForReadyRead() || receiver.readLine() != "ready\n") return receiver.readAllStandardError();
        const QPoint from = list.viewport()->mapToGlobal(list.visualItemRect(list.item(row)).center());
        QStringList steps{"mousemove", QString::number(from.x()), QString::number(from.y()), "mousedown", "1"};
        for (const char* x : {"150", "300", "450", "500", "501"}) steps << "sleep" << "0.1" << "mousemove" << x << "100";
        hand.start("xdotool", steps << "sleep" << "1" << "mouseup" << "1");
        (void)QTest::qWaitFor([&] { return receiver.state() + hand.state() == QProcess::NotRunning; }, 20000);
        return receiver.readAll();
    }

private Q_SLOTS:
    void FileDialogs_data()
    {
        AnswerColumns();
        const QString own = "|Why|Ones (*.one *.uno)|Twos (*.two)", all = "|Why|All of these (*.one *.uno *.two)" + own.mid(4);
        Row("the file it started on", Chosen(eFileDialogOpenImage, "sub/b.two", ""), "/sub/b.two" + all);
        Row("a model is cancelled", Chosen(eFileDialogOpenModel, "a.one", "!"), all);
        Row("an unknown kind opens a file, not what is not there", Chosen(99, "", "c.one", QMessageBox::Ok), all);
        Row("a folder", Chosen(eFileDialogFolder, "", "sub"), "/sub|Why|All Files (*)");
        Row("a file is proposed", Chosen(eFileDialogSave, "sub/new.two", ""), "/sub/new.two" + own);
        Row("saved over another, with a suffix added", Chosen(eFileDialogSave, "", "a", QMessageBox::Yes), "/a.one" + own);
        Row("not saved over another", Chosen(eFileDialogSave, "", "a.one", QMessageBox::No), own);
    }

    void FileDialogs() { CompareAnswer(); }

    void WorksWithinWorks()
    {
        Desk desk;
        const auto step = [&](int percent) { return desk.ui.SetProgress(percent) ? desk.window.findChild<QProgressDialog*>()->value() : -1; };
        desk.ui.EndProgress(), desk.ui.BeginProgress("outer");
        QVERIFY(step(50) == 50 && (desk.ui.BeginProgress("inner"), step(50)) == 75 && step(20) == 75 && step(80) == 90);
        QVERIFY((desk.ui.EndProgress(), step(70)) == 90); // never falls
        QVERIFY((desk.window.findChild<QProgressDialog*>()->cancel(), step(95)) == -1);
    }

    void PanelOfAMaterial()
    {
        Desk desk;
        IMaterial& oak = *desk.scene.CreateMaterial("oak");
        desk.panel.ShowMaterial(&oak), oak.SetOpacity(0.5f); // by somebody else
        desk.Row<QDoubleSpinBox>("Shininess").setValue(5000.0);
        OnNext<QColorDialog>([](QColorDialog& shown) { shown.setCurrentColor(QColor(0, 255, 128)), shown.accept(); });
        desk.Row<QPushButton>("Colour").click();
        QVERIFY(oak.GetShininess() == 1000.0f && Rounded(oak.GetDiffuseColor()) == "0, 1, 0.21586, 1"); // linear
        FileField& field = desk.Row<FileField>("Bump texture");
        for (const QString& path : {desk.Path("sub/bark.png"), QString("/a.obj")}) {
            if (path == "/a.obj") OnNext<QMessageBox>(Confirm); // it is refused
            Drop(field, FileData(path));
        }
        QVERIFY(oak.GetImageFile(eMaterialSlotBump) == "sub/bark.png" && oak.GetImage(eMaterialSlotBump) == &desk.image);
        QVERIFY(field.findChild<QLineEdit*>()->text() == "sub/bark.png" && desk.Row<QDoubleSpinBox>("Opacity").value() == 0.5);
        QVERIFY((desk.scene.RemoveMaterial(&oak), !desk.panel.widget()));
    }

    void PanelsOfGeneratorsAndNodes()
    {
        Desk desk;
        QScopedPointer<Generator> prism(new Generator);
        desk.panel.ShowGenerator(prism.data());
        QVERIFY((Q_EMIT desk.Row<QComboBox>("Preset").activated(1), desk.Row<QSpinBox>("Sides").value() == 6 && desk.Row<QComboBox>("Preset").currentIndex() == -1));
        OnNext<QMessageBox>(Confirm);
        desk.Row<QSpinBox>("Sides").setValue(12), desk.Row<QSpinBox>("Sides").setValue(7); // which throws
        QVERIFY(prism->sides == 9 && desk.Row<QSpinBox>("Sides").value() == 9 && (prism.reset(), !desk.panel.widget()));

        INode& group = *desk.scene.GetRoot()->CreateGroup("group");
        const QPointer<INode> first = desk.scene.AddMesh(&group, "first", {}, {});
        desk.scene.AddMesh(&group, "second", {}, {}), desk.panel.ShowNode(first);
        TrySaveDataToFile(desk.Path("bad.obj"), "f 1 2 3"), OnNext<QMessageBox>(Confirm);
        Q_EMIT desk.Row<FileField>("Model").fileChosen("bad.obj");
        QVERIFY(first->GetScene() && group.GetChildren().size() == 2); // nothing is lost
        Q_EMIT desk.Row<FileField>("Model").fileChosen(kCube);
        QVERIFY(!first->GetScene() && !desk.panel.widget() && group.GetChildren().size() == 2);
        QVERIFY(group.GetChildren()[0]->GetName() == "first" && !group.GetChildren()[0]->GetChildren().empty());
    }

    void DropsIntoAScene()
    {
        Desk desk;
        std::vector<MeshVertex> corners(3);
        corners[0].position = {0, -9, -9}, corners[1].position = {0, 9, -9}, corners[2].position = {0, 0, 9};
        const auto* const wall = qobject_cast<IMeshNode*>(desk.scene.AddMesh(desk.scene.GetRoot(), "wall", corners, {0, 1, 2}));
        desk.scene.GetCamera()->LookAt({-20, 0, 0}, {0, 0, 0});
        IMaterial& oak = *desk.scene.CreateMaterial("oak");
        oak.SetImageFile(eMaterialSlotBump, "bark.png"), oak.SetOpacity(0.5f);
        const auto worn = [&] { return wall->GetMaterial(0); };
        const auto drop = [&](const QMimeData& mime, int x = 50) { return DropIntoScene(mime, {{x, 50}, {100, 100}}, desk, desk.document); };
        const auto own = MakeMimeData(oak, desk.ui);
        drop(*own, 1); // beside it
        QVERIFY(worn() == desk.scene.GetDefaultMaterial() && own->GetParameters()["bumpTexture"] == desk.Path("bark.png"));
        drop(*own), oak.SetOpacity(0.75f);
        QVERIFY(worn() == &oak && desk.scene.GetMaterials().size() == 2);
        drop(*own); // no longer what the scene has
        QVERIFY(worn() != &oak && worn()->GetOpacity() == 0.5f && worn()->GetImageFile(eMaterialSlotBump) == "bark.png");
        SaveDataToFile(desk.Path("ash.mtl"), MaterialToXml("x", {{"opacity", 0.25}, {"texture", "grain.png"}}));
        drop(FileData(desk.Path("ash.mtl"))), drop(FileData(desk.Path("other.png")));
        QVERIFY(worn()->GetName() == "ash" && worn()->GetOpacity() == 0.25f && worn()->GetImageFile(eMaterialSlotDiffuse) == "other.png");
        QCOMPARE(drop(FileData(kCube)), kCube); // left to the window
        QVERIFY(MakeMimeData(*desk.scene.CreateMaterial("a/b"), desk.ui)->urls().isEmpty()); // but nothing is thrown
    }

    void Publishing_data()
    {
        AnswerColumns();
        const QString shown = "|It is published at u:1\nOpen it?";
        const QString first = "Publish into|f->/last", place = "|[dialog 3]|[Publish|Where to publish it?|%1]|[deleted]";
        Row("the last place again", Published("done", {"0", "yes"}), first + shown + "|open u:1>/last");
        Row("another place, which is kept", Published("settings done", {"1", "no"}), "Publish into|f->" + place.arg("") + "|f->/new" + shown + ">/new");
        Row("a pin, at the second go", Published("pin auth done", {"0", "bad", "good", "no"}), first + "|open u:2|The pin from u:2:|pin bad|That place does not accept it, or not with this pin" + place.arg("/last") + "|Pin, if there is one:|f->/newgood" + shown + ">/new");
        Row("a pin that nobody has", Published("pin", {"0", ""}), first + "|open u:2|The pin from u:2:|cancel>/last");
        Row("a pin that nobody takes", Published("pin none", {"0", "1"}), first + "|open u:2|The pin from u:2:|!Not implement>/last");
        Row("a failure", Published("failed", {"0"}), first + "|No room>/last");
        Row("cancelled on the way, of which no error is made", Published("%", {"0"}), first + "|cancel>/last");
    }

    void Publishing() { CompareAnswer(); }

    void TheMenus()
    {
        Desk desk;
        DeskWindow window(desk.application);
        const auto file = [&](const QString& name, auto then) { OnNext<QFileDialog>([=, &desk](QFileDialog& box) { box.findChild<QLineEdit*>("fileNameEdit")->setText(desk.Path(name)), static_cast<QDialog&>(box).accept(), then(); }); };
        Host::Scene& scene = *window.GetDocument().GetScene();
        window.Open(":figure"), window.centralWidget()->resize(300, 300);
        QImage(3, 2, QImage::Format_RGB32).save(desk.Path("bark.png")), Drop(*window.centralWidget(), FileData(desk.Path("bark.png")));
        const auto isPapered = [](const IMaterial* each) { return each->GetImage(eMaterialSlotDiffuse) && each->GetImage(eMaterialSlotDiffuse)->GetSize() == QSize(3, 2); };
        QVERIFY(std::count_if(scene.GetMaterials().begin(), scene.GetMaterials().end(), isPapered) == 1);
        QVERIFY((Drop(*window.centralWidget(), FileData(kCube)), scene.GetRoot()->GetChildren().size() == 2)); // beside the figure

        for (const char* name : {"all", "one"}) {
            OnNext<QInputDialog>([=](QInputDialog& box) { Type(box, name); });
            Choose(window, "&Snapshots", "&Take..."), scene.GetRoot()->GetChildren()[0]->SetVisible(false);
        }
        QVERIFY((Choose(window, "all", "Re&store"), Choose(window, "one", "Re&move"), scene.GetRoot()->GetChildren()[0]->IsVisible() && scene.GetSnapshotManager()->GetSnapshots().size() == 1));

        file("out.obj", [] { OnNext<QMessageBox>(Confirm); });
        QVERIFY((Choose(window, "&File", "&Export..."), !desk.application.ReadModel(desk.Path("out.obj")).scene->nodes.empty()));
        SaveDataToFile(desk.Path("s.js"), "print(args, scene.nodes.length > 1)\nnone()");
        file("s.js", [] { OnNext<QInputDialog>([](QInputDialog& box) { Type(box, "\"a b\" c"); }); });
        Choose(window, "S&cripts", "&Run...");
        QCOMPARE(window.findChild<QPlainTextEdit*>()->toPlainText(), "a b,c true\n" + desk.Path("s.js") + ":2: ReferenceError: Can't find variable: none\n");
    }

    void AmongEmptyPlugins()
    {
        for (const QString& plugin : {QString("null"), QString("thrown"), QString("hollow")}) {
            const QTemporaryDir folder;
            Application application({EMPTY_PLUGINS + ('/' + plugin), LUMENTA_PLUGINS}, folder.filePath("settings.ini"));
            DeskWindow window(application);
            window.Open(":figure"), window.Open(kCube);
            QCOMPARE(window.GetDocument().GetScene()->GetRoot()->GetChildren().size(), std::size_t(1));
            OnNext<QFileDialog>([&](QFileDialog& box) { box.findChild<QLineEdit*>("fileNameEdit")->setText(folder.filePath("out.obj")), static_cast<QDialog&>(box).accept(); });
            Choose(window, "&File", "&Export...");
            QVERIFY(QFile::exists(folder.filePath("out.obj")));
        }
    }

    void TheWindow()
    {
        Desk desk;
        DeskWindow window(desk.application);
        window.show();
        auto& view = dynamic_cast<SceneView&>(*window.centralWidget());
        QSignalSpy shown(&view, &SceneView::shown);
        QVERIFY(shown.wait());
        const QImage empty = view.grab().toImage();
        OnNext<QMessageBox>(Confirm), window.Open("/not/there.obj"), window.Open(":figure");
        QVERIFY(shown.wait() && view.grab().toImage() != empty);
        QTest::mouseClick(&view, Qt::LeftButton, {}, view.rect().center()), QTest::keyClick(&view, Qt::Key_Delete);
        OnNext<QInputDialog>([](QInputDialog& box) { box.reject(); });
        QVERIFY(window.isWindowModified() && !window.close());
        OnNext<QInputDialog>([](QInputDialog& box) { Type(box, "Discard them"); });
        QVERIFY(window.close() && desk.application.GetSettings()->GetValue("window/geometry", {}).isValid());
    }

    void DragsIntoAnotherProgram()
    {
        Desk desk;
        desk.scene.CreateMaterial("Dark oak")->SetOpacity(0.25f), desk.scene.CreateMaterial("bark")->SetImageFile(eMaterialSlotDiffuse, "bark.png");
        MaterialList list(desk.document);
        list.setGeometry(0, 0, 200, 200), list.show();
        const QString file = QDir::tempPath() + "/lumenta/Dark oak.mtl", image = desk.Path("bark.png");
        QCOMPARE(Dragged(list, 1), "Dark oak|" + file + "|1|Dark oak|10.25");
        QTRY_VERIFY(!QFile::exists(file));
        QCOMPARE((SaveDataToFile(image, "pixels"), Dragged(list, 2)), "bark|" + image + "|1||0");
        QTRY_VERIFY(!list.findChild<QDrag*>()); // nor what it carried
        QVERIFY(QFile::exists(image));
    }
};

int main(int argc, char* argv[])
{
    Child screen;
    const QTemporaryDir temporary;
    const bool isReceiver = argc > 1 && qstrcmp(argv[1], "receiver") == 0;
    if (!isReceiver) {
        screen.start("Xvfb", {"-terminate", "-displayfd", "1", "-screen", "0", "1200x900x24"});
        if (!screen.waitForReadyRead() || QStandardPaths::findExecutable("xdotool").isEmpty())
            qFatal("a screen and a hand are needed: apt-get install xvfb xdotool");
        qputenv("DISPLAY", ':' + screen.readLine().trimmed()), qputenv("QT_QPA_PLATFORM", "xcb"), qputenv("QT_XCB_GL_INTEGRATION", "none");
        for (const char* own : {"TMPDIR", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"}) qputenv(own, QFile::encodeName(temporary.path()));
    }
    QLoggingCategory::setFilterRules("qt.qpa.xcb.warning=false"); // no window manager: dialogs ask for the focus too early
    const QApplication application(argc, argv); // ends before its screen
    DeskTest test;
    return isReceiver ? Target().Wait() : QTest::qExec(&test, argc, argv);
}

#include "desk_test.moc"
