#include "lumenta/files/WholeFile.h"
#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IMaterial.h"
#include "lumenta/interfaces/INode.h"
#include "lumenta/serializers/SceneSerializers.h"
#include "reference/host/images/Image.h"
#include "reference/host/services/Application.h"
#include "reference/host/services/Document.h"
#include "reference/host/services/SceneSetup.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

using namespace Host;

namespace {

/// Keeps the lines; leaves, or talks back, when told to.
class Ear final : public ILogWriter {
public:
    void Write(eLogLevel level, const QString& text) override
    {
        lines += LevelName(level) + ' ' + text;
        if (text == "leave") log->RemoveWriter(leaver);
        if (text == "throw") throw 5;
        if (text == "echo") log->Write(eLogInfo, "echo");
    }

    ILog* log = nullptr;
    ILogWriter* leaver = nullptr;
    QStringList lines;
};

QString FailureOf(Document& document, const QString& source)
{
    try {
        document.Open(source);
        return "opened";
    } catch (const Exception& exception) {
        return exception.GetErrorText();
    }
}

} // namespace

class ServicesTest : public QObject {
    Q_OBJECT

    QTemporaryDir m_folder;
    const Application m_application{QStringList(LUMENTA_PLUGINS)};

private Q_SLOTS:
    void SettingsStayAndTell()
    {
        const QString file = m_folder.filePath("new/\u00fc.ini");
        {
            Settings settings(file);
            QSignalSpy told(&settings, &ISettings::onValueChanged);
            QCOMPARE(settings.GetValue("a/b", 7), QVariant(7));
            settings.SetValue("a/b", 7); // equal to the default of whoever asks, but not yet kept
            settings.SetValue("a/b", 7);
            settings.SetValue("a/text", "\u00e4;=%\n");
            settings.SetValue("never", QVariant());
            settings.SetValue("gone", 1);
            settings.SetValue("gone", QVariant());
            QCOMPARE(told.size(), 4);
            QCOMPARE(told.last(), (QVariantList{"gone", QVariant::fromValue(QVariant())}));
        }
        const Settings again(file);
        QCOMPARE(again.GetValue("a/b", 0).toInt(), 7);
        QCOMPARE(again.GetValue("a/text", 0).toString(), QString("\u00e4;=%\n"));
        QCOMPARE(again.GetValue("gone", "default").toString(), QString("default"));
    }

    void LogReachesEveryWriterOnce()
    {
        Log log;
        Ear first, second;
        first.log = second.log = &log;
        first.leaver = &second;
        for (ILogWriter* writer : {&first, &second, &first})
            log.AddWriter(writer);
        log.Write(eLogWarning, "one");
        log.Write(eLogError, "echo"); // would go on for ever
        for (int i = 0; i < 2; ++i)
            QTest::ignoreMessage(QtWarningMsg, "A receiver of 'ILog::Write' threw: something of an unknown class");
        log.Write(eLogInfo, "throw");
        log.Write(eLogDebug, "leave");
        QCOMPARE(first.lines, QStringList({"warning one", "error echo", "info throw", "debug leave"}));
        QCOMPARE(second.lines, QStringList({"warning one", "error echo", "info throw"}));
    }

    void LogFileTakesWholeLines()
    {
        const QString name = m_folder.filePath("a.log");
        LogFile file(name);
        Log log;
        log.AddWriter(&file);
        std::vector<std::unique_ptr<QThread>> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back(QThread::create([&] {
                for (int n = 0; n < 50; ++n)
                    log.Write(eLogInfo, "a\nb");
            }))->start();
        for (const auto& thread : threads)
            QVERIFY(thread->wait(10000));
        QFile written(name);
        QVERIFY(written.open(QIODevice::ReadOnly));
        QString text = written.readAll();
        static const QRegularExpression line("\\d{4}-\\d\\d-\\d\\dT[0-9:.]{12}Z info a\n    b\n");
        text.remove(line);
        QCOMPARE(text, QString());
        QVERIFY_EXCEPTION_THROWN(LogFile(m_folder.path()), FileException);
    }

    void ModelsAreOpenedAsDocuments()
    {
        const QList<QString> extensions = m_application.GetSerializers()->GetOpenableExtensions();
        QCOMPARE(QStringList(extensions).removeDuplicates(), 0);
        QVERIFY(extensions.contains("x") && !extensions.contains(""));
        QCOMPARE(m_application.GetSerializers()->CreateLoader("model:"), nullptr);

        Document document(m_application);
        Scene& scene = *document.GetScene();
        QSignalSpy updates(&scene, &IScene::afterSceneUpdate);
        document.Open("/usr/share/assimp/models/X/Testwuson.X");
        QCOMPARE(updates.size(), 1);
        QCOMPARE(scene.GetFileName(), QString("/usr/share/assimp/models/X/Testwuson.X"));
        QVERIFY(!scene.IsModified() && !scene.GetAnimations().empty());

        const auto loader = CreateSceneLoader(m_application.GetSerializers(), scene.GetFileName());
        loader->Load(scene.GetFileName(), scene);
        QVERIFY(!scene.IsModified()); // as after any other loader

        const std::vector<INode*> before = scene.GetRoot()->GetChildren();
        QVERIFY(FailureOf(document, "/none.x").contains("/none.x"));
        QVERIFY(FailureOf(document, ":none").contains(":none"));
        QVERIFY(FailureOf(document, m_folder.path()).contains(m_folder.path()));
        QCOMPARE(scene.GetRoot()->GetChildren(), before);
        QVERIFY_EXCEPTION_THROWN(document.Save(m_folder.filePath("a.x")), LoadingException);
        QVERIFY(!QFile::exists(m_folder.filePath("a.x")));

        document.Open(":figure");
        QCOMPARE(scene.GetFileName(), QString());
        QCOMPARE(scene.GetRoot()->GetChildren().size(), std::size_t(1));
        QVERIFY(scene.GetRoot()->GetChildren().front() != before.front());
    }

    void ReferencesFollowTheDocument()
    {
        const QTemporaryDir folder;
        const QDir top(QFileInfo(folder.path()).canonicalFilePath());
        const QString model = top.filePath("models/m.obj"), texture = top.filePath("models/tex/red.png");
        QVERIFY(top.mkpath("models/tex") && top.mkpath("docs"));
        SaveDataToFile(model, "mtllib m.mtl\no m\nv 0 0 0\nv 1 0 0\nv 0 0 1\nusemtl red\nf 1 2 3\n");
        SaveDataToFile(top.filePath("models/m.mtl"), "newmtl red\nmap_Kd tex\\red.png\nnewmtl gone\nmap_Kd D:\\gone.png\n");
        const auto paint = [&](QRgb color) {
            QImage pixels(1, 1, QImage::Format_RGB32);
            pixels.fill(color);
            QVERIFY(pixels.save(texture));
        };
        paint(0xffff0000);

        Document document(m_application);
        Scene& scene = *document.GetScene();
        scene.GetRoot()->CreateMesh("m", model);
        IMaterial* const material = scene.FindMaterial("red");
        QCOMPARE(material->GetImageFile(eMaterialSlotDiffuse), texture); // the document has no folder yet
        scene.SetModified(false);
        QCOMPARE(LoadSceneImages(scene, *m_application.GetImageManager()), QStringList());
        QVERIFY(!scene.IsModified());
        IImage* const image = material->GetImage(eMaterialSlotDiffuse);
        const std::pair<QString, QString> saves[] = {
            {"docs/a", texture}, {"models/b", "tex/red.png"}, {"models/b", "tex/red.png"}, {"docs/a", texture}};
        IMaterial* const embedding = scene.CreateMaterial("embedding");
        Image embedded(QImage(1, 1, QImage::Format_RGB32));
        embedding->SetImageFile(eMaterialSlotDiffuse, "*0");
        embedding->SetImage(eMaterialSlotDiffuse, &embedded);
        for (const auto& [name, file] : saves) {
            QCOMPARE(document.Save(top.filePath(name + ".lumenta")), QStringList());
            QCOMPARE(material->GetImageFile(eMaterialSlotDiffuse), file);
            QVERIFY(material->GetImage(eMaterialSlotDiffuse) == image && image && !scene.IsModified());
            QCOMPARE(embedding->GetImageFile(eMaterialSlotDiffuse), QString("*0")); // names no file
            Document other(m_application);
            QCOMPARE(other.Open(top.filePath(name + ".lumenta")), QStringList());
            QCOMPARE(other.GetScene()->FindMaterial("red")->GetImageFile(eMaterialSlotDiffuse), file);
            QCOMPARE(other.GetScene()->FindMaterial("red")->GetImage(eMaterialSlotDiffuse), image);
        }
        scene.GetRoot()->CreateMesh("m", model); // within a document of another folder
        QCOMPARE(scene.GetMaterials().back()->GetImageFile(eMaterialSlotDiffuse), texture);
        paint(0xff0000ff);
        document.Open(top.filePath("models/b.lumenta")); // before control returns to the event loop
        QCOMPARE(scene.FindMaterial("red")->GetImage(eMaterialSlotDiffuse)->ToQImage().pixel(0, 0), 0xff0000ff);
    }
};

QTEST_GUILESS_MAIN(ServicesTest)
#include "services_test.moc"
