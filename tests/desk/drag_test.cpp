// Materials dragged with a real pointer from one process into another.

#include "lumenta/files/WholeFile.h"
#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IMaterial.h"
#include "lumenta/materials/MaterialMimeData.h"
#include "lumenta/materials/MaterialXml.h"
#include "reference/desk/MaterialList.h"
#include "reference/host/services/Application.h"
#include "reference/host/services/Document.h"
#include "reference/host/services/SilentUserInterface.h"

#include <QApplication>
#include <QDrag>
#include <QtTest>

#include <cstdio>

namespace {

/// Knows of what is dropped on it only what any program would.
class Target final : public QWidget {
protected:
    void dragEnterEvent(QDragEnterEvent* event) override { event->acceptProposedAction(); }
    void dropEvent(QDropEvent* event) override
    {
        const QString path = event->mimeData()->urls().value(0).toLocalFile();
        QStringList said{event->mimeData()->text(), QFile::exists(path) ? "there" : "missing", path};
        if (path.endsWith(".mtl")) {
            QString name;
            QMap<QString, QVariant> parameters;
            ReadMaterial(ReadAllFile(path), name, parameters);
            said << name << QString::number(parameters.size()) << parameters["opacity"].toString();
            said << (GetDefaultMaterial(path) == parameters ? "alike" : "different");
        }
        std::puts(qPrintable(said.join('|')));
        event->acceptProposedAction();
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    }
};

int Receive(QApplication& application)
{
    Target target;
    target.setAcceptDrops(true);
    target.setGeometry(400, 0, 200, 200);
    target.show();
    if (!QTest::qWaitForWindowExposed(&target)) return 1;
    std::puts("ready");
    std::fflush(stdout);
    return application.exec();
}

/// Hands the material over and asks for nothing to be removed.
class Source final : public QWidget {
public:
    QPointer<MaterialMimeData> mime;

protected:
    void mouseMoveEvent(QMouseEvent*) override
    {
        auto* const drag = new QDrag(this);
        drag->setMimeData(mime = new MaterialMimeData({{"opacity", 0.5}}, "kept"));
        drag->exec();
    }
};

} // namespace

class DragTest : public QObject {
    Q_OBJECT

private:
    /// What the other process says of a drag from a widget's point.
    static QStringList Dragged(QWidget& from, const QPoint& point)
    {
        from.setGeometry(0, 0, 200, 200);
        from.show();
        QProcess receiver, hand;
        receiver.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        receiver.start(QCoreApplication::applicationFilePath(), {"receive"});
        QStringList steps{"mousemove", QString::number(point.x()), QString::number(point.y()), "mousedown", "1"};
        for (const char* x : {"150", "300", "450", "500", "501"})
            steps << "sleep" << "0.1" << "mousemove" << x << "100";
        if (!QTest::qWaitForWindowExposed(&from) || !receiver.waitForReadyRead() || receiver.readLine() != "ready\n")
            return {"the receiver does not come up"};
        hand.start("xdotool", steps << "sleep" << "0.2" << "mouseup" << "1");
        (void)QTest::qWaitFor([&] { return receiver.state() == QProcess::NotRunning; }, 20000);
        hand.waitForFinished();
        return QString::fromUtf8(receiver.readAll()).trimmed().split('|');
    }

private Q_SLOTS:
    void FromTheListOfMaterials()
    {
        Host::Application application({});
        Host::SilentUserInterface ui(*application.GetLog());
        Host::Document document(application);
        document.SetUserInterface(&ui);
        const QTemporaryDir folder;
        const QString image = folder.filePath("bark.png");
        SaveDataToFile(image, "pixels");
        IMaterial& oak = *document.GetScene()->CreateMaterial("Dark oak");
        IMaterial& bark = *document.GetScene()->CreateMaterial("bark");
        oak.SetOpacity(0.25f);
        bark.SetImageFile(eMaterialSlotDiffuse, "bark.png");
        document.GetScene()->SetFileName(folder.filePath("scene.xml"));
        Host::MaterialList list(document);
        list.show();

        const auto centre = [&](int row) { return list.visualItemRect(list.item(row)).center(); };
        const QString file = QDir::tempPath() + "/lumenta/Dark oak.mtl";
        const QStringList expected{"Dark oak", "there", file, "Dark oak", "1", "0.25", "alike"};
        QCOMPARE(Dragged(list, centre(1)), expected);
        QTRY_VERIFY(!QFile::exists(file));
        QCOMPARE(Dragged(list, centre(2)), (QStringList{"bark", "there", image}));
        QTRY_VERIFY(!list.findChild<QDrag*>()); // and so its data, which must not take the image with it
        QVERIFY(QFile::exists(image));
    }

    void FromASourceThatDoesNotCleanUp()
    {
        Source source;
        const QString file = QDir::tempPath() + "/lumenta/kept.mtl";
        QCOMPARE(Dragged(source, {100, 100}), (QStringList{"kept", "there", file, "kept", "1", "0.5", "alike"}));
        QTRY_VERIFY(!source.mime);
        QVERIFY(QFile::exists(file));
    }
};

int main(int argc, char* argv[])
{
    if (argc > 1 && qstrcmp(argv[1], "receive") == 0) {
        QApplication application(argc, argv);
        return Receive(application);
    }
    QProcess screen;
    screen.start("Xvfb", {"-displayfd", "1", "-screen", "0", "640x480x24"});
    if (!screen.waitForReadyRead() || QStandardPaths::findExecutable("xdotool").isEmpty())
        qFatal("a screen and a hand are needed: apt-get install xvfb xdotool");
    const QTemporaryDir temporary;
    qputenv("DISPLAY", ':' + screen.readLine().trimmed());
    qputenv("QT_QPA_PLATFORM", "xcb");
    qputenv("TMPDIR", QFile::encodeName(temporary.path()));
    int status = 0;
    {
        QApplication application(argc, argv);
        DragTest test;
        status = QTest::qExec(&test, argc, argv);
    }
    screen.terminate();
    screen.waitForFinished();
    return status;
}

#include "drag_test.moc"
