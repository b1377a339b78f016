// Dialogs, panels and drops, answered as a hand would, on a display that nobody sees.

#include "lumenta/files/WholeFile.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/materials/MaterialXml.h"
#include "reference/desk/DeskWindow.h"
#include "reference/desk/Drops.h"
#include "reference/desk/FileField.h"
#include "reference/desk/PropertyPanel.h"
#include "reference/desk/SceneView.h"
#include "reference/host/images/Image.h"
#include "reference/host/services/Application.h"
#include "tests/foundation/Exact.h"
#include "tests/serializers/ServiceStandIns.h"

#include <QtWidgets>

using namespace Host;

// Assimp leaves memory behind when it is stopped.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() { return "leak:libassimp"; }

namespace {

const QString kCube = QStringLiteral("/usr/share/assimp/models/X/test_cube_text.x");

/// What the next dialog is told. Another dialog, or none, ends the program.
template <typename Dialog, typename F>
void OnNext(const F& answer)
{
    QTimer::singleShot(0, qApp, [answer] { answer(dynamic_cast<Dialog&>(*QApplication::activeModalWidget())); });
}

void Confirm(QMessageBox& box) { box.accept(); }

struct FileData final : QMimeData {
    explicit FileData(const QString& path) { setUrls({QUrl::fromLocalFile(path)}); }
};

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

    Desk()
    {
        images.loaders = {{"t", "Pictures", {"png"}}}, images.image = &image;
        document.SetUserInterface(&ui), scene.SetFileName(Path("scene.xml"));
    }
    QString Path(const QString& name) const { return folder.filePath(name); }
    template <typename Widget> Widget& Row(const char* title) { return *panel.widget()->findChild<Widget*>(title); }
    // clang-format off: nothing to be read here
    IImageManager* GetImageManager() const override { return &images; } ILog* GetLog() const override { StandIn::No(); }
    const IModelFormats* GetModelFormats() const override { return application.GetModelFormats(); }
    const ISerializersRegistry* GetSerializers() const override { StandIn::No(); } ISettings* GetSettings() const override { StandIn::No(); }
    // clang-format on
};

struct Generator final : IGenerator {
    QMap<QString, QVariant> values{{"height", 0.5}, {"sides", 3}};

    void Generate(IMeshNodeBuilder&) override {}
    QList<sGeneratorParameter> GetParameters() const override { return {{"sides", "Sides", 3, 3, 9}, {"height", "Height", 0.5, 0.0, 1.0}}; }
    QVariant GetValue(const QString& name) const override { return values[name]; }
    void SetValue(const QString& name, const QVariant& value) override { value == 7 ? throw FactoryException(name) : values[name] = value; }
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
        for (const QLabel* label : shown.findChildren<QLabel*>()) read += label->text() == "Why" ? "|" : "";
        read += shown.nameFilters().join('|');
        if (!typed.isEmpty()) shown.findChild<QLineEdit*>("fileNameEdit")->setText(typed);
        if (confirmed) OnNext<QMessageBox>([=](QMessageBox& box) { box.button(confirmed)->click(); });
        if (typed != "!") QMetaObject::invokeMethod(&shown, "accept");
        if (shown.isVisible()) shown.reject();
    });
    return dialog->Show("Title", "Why", desk.Path(start)).mid(desk.folder.path().size()) + read;
}

} // namespace

class DeskTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void FileDialogs_data()
    {
        AnswerColumns();
        const QString own = "|Ones (*.one *.uno)|Twos (*.two)", all = "|All of these (*.one *.uno *.two)" + own;
        Row("the file it started on", Chosen(eFileDialogOpenImage, "sub/b.two", ""), "/sub/b.two" + all);
        Row("a model is cancelled", Chosen(eFileDialogOpenModel, "a.one", "!"), all);
        Row("an unknown kind opens a file, not what is not there", Chosen(99, "", "c.one", QMessageBox::Ok), all);
        Row("a folder", Chosen(eFileDialogFolder, "", "sub"), "/sub|All Files (*)");
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
        QCOMPARE(step(50), 50);
        desk.ui.BeginProgress("inner");
        QVERIFY(step(50) == 75 && step(20) == 75 && step(80) == 90);
        desk.ui.EndProgress();
        QCOMPARE(step(70), 90); // never falls
        desk.window.findChild<QProgressDialog*>()->cancel();
        QCOMPARE(step(95), -1);
    }

    void PanelOfAMaterial()
    {
        Desk desk;
        IMaterial& oak = *desk.scene.CreateMaterial("oak");
        desk.panel.ShowMaterial(&oak), oak.SetOpacity(0.5f); // by somebody else
        desk.Row<QDoubleSpinBox>("Shininess").setValue(5000.0);
        OnNext<QColorDialog>([](QColorDialog& shown) { shown.setCurrentColor("#00ff80"), shown.accept(); });
        desk.Row<QPushButton>("Colour").click();
        QVERIFY(oak.GetShininess() == 1000.0f && Rounded(oak.GetDiffuseColor()) == "0, 1, 0.21586, 1"); // linear
        FileField& field = desk.Row<FileField>("Bump texture");
        for (const QString& path : {desk.Path("sub/bark.png"), QString("/a.obj")}) {
            const FileData mime(path);
            QDragEnterEvent enter({5, 5}, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
            QDropEvent drop({5, 5}, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
            if (path == "/a.obj") OnNext<QMessageBox>(Confirm); // it is refused
            QApplication::sendEvent(&field, &enter), QApplication::sendEvent(&field, &drop);
        }
        QVERIFY(oak.GetImageFile(eMaterialSlotBump) == "sub/bark.png" && oak.GetImage(eMaterialSlotBump) == &desk.image);
        QVERIFY(field.findChild<QLineEdit*>()->text() == "sub/bark.png" && desk.Row<QDoubleSpinBox>("Opacity").value() == 0.5);
        OnNext<QFileDialog>([&](QFileDialog& shown) { shown.reject(); });
        field.findChild<QToolButton*>()->click();
        desk.scene.RemoveMaterial(&oak);
        QVERIFY(!desk.panel.widget());
    }

    void PanelsOfGeneratorsAndNodes()
    {
        Desk desk;
        QScopedPointer<Generator> prism(new Generator);
        desk.panel.ShowGenerator(prism.data());
        desk.Row<QSpinBox>("Sides").setValue(12), desk.Row<QDoubleSpinBox>("Height").setValue(0.75);
        OnNext<QMessageBox>(Confirm);
        desk.Row<QSpinBox>("Sides").setValue(7); // throws
        QVERIFY(prism->values.values() == (QVariantList{0.75, 9}) && desk.Row<QSpinBox>("Sides").value() == 9);
        prism.reset();
        QVERIFY(!desk.panel.widget());

        INode& group = *desk.scene.GetRoot()->CreateGroup("group");
        const QPointer<INode> first = desk.scene.AddMesh(&group, "first", {}, {});
        desk.scene.AddMesh(&group, "second", {}, {}), desk.panel.ShowNode(first);
        TrySaveDataToFile(desk.Path("bad.obj"), "f 1 2 3");
        OnNext<QMessageBox>(Confirm);
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
        QVERIFY(MakeMimeData(*desk.scene.CreateMaterial("a/b"), desk.ui)->urls().isEmpty()); // nothing is thrown
    }

    void TheWindow()
    {
        Desk desk;
        DeskWindow window(desk.application);
        window.show();
        SceneView& view = *window.findChild<SceneView*>();
        QSignalSpy shown(&view, &SceneView::shown);
        QVERIFY(shown.wait());
        const QImage empty = view.grab().toImage();
        OnNext<QMessageBox>(Confirm);
        window.Open("/not/there.obj"), window.Open(":figure");
        QVERIFY(shown.wait() && view.grab().toImage() != empty);
        QTest::mouseClick(&view, Qt::LeftButton, {}, view.rect().center()), QTest::keyClick(&view, Qt::Key_Delete);
        OnNext<QInputDialog>([](QInputDialog& box) { box.reject(); });
        QVERIFY(window.isWindowModified() && !window.close());
        OnNext<QInputDialog>([](QInputDialog& box) { box.setTextValue("Discard them"), box.accept(); });
        QVERIFY(window.close() && desk.application.GetSettings()->GetValue("window/geometry", {}).isValid());
    }
};

QTEST_MAIN(DeskTest)
#include "desk_test.moc"
