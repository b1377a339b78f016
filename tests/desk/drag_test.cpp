// Materials dragged with a real pointer from one process into another.

#include "lumenta/files/WholeFile.h"
#include "lumenta/materials/MaterialXml.h"
#include "reference/desk/MaterialList.h"
#include "reference/host/services/Application.h"
#include "reference/host/services/Document.h"
#include "reference/host/services/SilentUserInterface.h"

#include <QtTest>
#include <QtWidgets>

/// Another program's, which knows of a drop only what it can read of it, and says so.
class Target final : public QWidget {
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

class DragTest : public QObject {
    Q_OBJECT

    /// What is said of a drag from a row of the list to the right, where the other program stands.
    static QString Dragged(const QListWidget& list, int row)
    {
        QProcess receiver, hand;
        receiver.start(QCoreApplication::applicationFilePath(), {"receive"});
        if (!receiver.waitForReadyRead() || receiver.readLine() != "ready\n") return receiver.readAllStandardError();
        const QPoint from = list.viewport()->mapToGlobal(list.visualItemRect(list.item(row)).center());
        QStringList steps{"mousemove", QString::number(from.x()), QString::number(from.y()), "mousedown", "1"};
        for (const char* x : {"150", "300", "450", "500", "501"}) steps << "sleep" << "0.1" << "mousemove" << x << "100";
        hand.start("xdotool", steps << "sleep" << "0.2" << "mouseup" << "1");
        (void)QTest::qWaitFor([&] { return receiver.state() + hand.state() == QProcess::NotRunning; }, 20000);
        return receiver.readAll();
    }

private Q_SLOTS:
    void FromTheListOfMaterials()
    {
        const QTemporaryDir folder;
        Host::Application application({});
        Host::SilentUserInterface ui(*application.GetLog());
        Host::Document document(application);
        document.SetUserInterface(&ui), document.GetScene()->SetFileName(folder.filePath("scene.xml"));
        document.GetScene()->CreateMaterial("Dark oak")->SetOpacity(0.25f);
        document.GetScene()->CreateMaterial("bark")->SetImageFile(eMaterialSlotDiffuse, "bark.png");
        Host::MaterialList list(document);
        list.setGeometry(0, 0, 200, 200), list.show();
        const QString file = QDir::tempPath() + "/lumenta/Dark oak.mtl", image = folder.filePath("bark.png");
        QCOMPARE(Dragged(list, 1), "Dark oak|" + file + "|1|Dark oak|10.25");
        QTRY_VERIFY(!QFile::exists(file));
        SaveDataToFile(image, "pixels");
        QCOMPARE(Dragged(list, 2), "bark|" + image + "|1||0");
        QTRY_VERIFY(!list.findChild<QDrag*>()); // nor what it carried, which has not taken the image along
        QVERIFY(QFile::exists(image));
    }
};

int main(int argc, char* argv[])
{
    if (argc > 1 && qstrcmp(argv[1], "receive") == 0) {
        QApplication application(argc, argv);
        Target target;
        target.setAcceptDrops(true), target.setGeometry(400, 0, 200, 200), target.show();
        QTextStream(stdout) << (QTest::qWaitForWindowExposed(&target) ? "ready\n" : "");
        return QApplication::exec();
    }
    QProcess screen;
    screen.start("Xvfb", {"-displayfd", "1", "-screen", "0", "640x480x24"});
    if (!screen.waitForReadyRead() || QStandardPaths::findExecutable("xdotool").isEmpty())
        qFatal("a screen and a hand are needed: apt-get install xvfb xdotool");
    const QTemporaryDir temporary;
    qputenv("DISPLAY", ':' + screen.readLine().trimmed()), qputenv("QT_QPA_PLATFORM", "xcb");
    qputenv("TMPDIR", QFile::encodeName(temporary.path()));
    const int status = [&] {
        const QApplication application(argc, argv); // ends before its screen
        DragTest test;
        return QTest::qExec(&test, argc, argv);
    }();
    return screen.kill(), screen.waitForFinished(), status;
}

#include "drag_test.moc"
