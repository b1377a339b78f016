// Plug-ins as they are loaded, and what comes out of them.

#include "lumenta/interfaces/IExporter.h"
#include "lumenta/interfaces/ILog.h"
#include "reference/host/ApplicationContext.h"
#include "reference/host/ModelReader.h"
#include "reference/host/Picture.h"
#include "reference/host/PluginHost.h"

#include <QtTest>

using namespace Host;

// Assimp leaves memory behind when it is stopped. What the loader itself leaves
// behind still counts.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions()
{
    return "leak:libassimp";
}

namespace {

const QString kFolder = QStringLiteral(REFUSED_PLUGINS);
const QString kModels = QStringLiteral("/usr/share/assimp/models/");

/// What is thrown, with its class where it is ours.
template <typename Action>
QString ErrorOf(Action action)
{
    try {
        action();
        return QStringLiteral("nothing was thrown");
    } catch (const LoadingException& failure) {
        return QStringLiteral("LoadingException: ") + failure.GetErrorText();
    } catch (const FileException& failure) {
        return QStringLiteral("FileException: ") + failure.GetErrorText();
    } catch (const FactoryException& failure) {
        return QStringLiteral("FactoryException: ") + failure.GetErrorText();
    } catch (const LogicException& failure) {
        return failure.GetErrorText();
    }
}

/// What a command writes to standard error, with its exit code.
QString ErrorsOf(const QString& command, const QString& model, const QString& pluginPath)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LUMENTA_PLUGIN_PATH", pluginPath);
    process.setProcessEnvironment(environment);
    process.start(command, {"info", model});
    process.waitForFinished();
    return process.readAllStandardError() + QByteArray::number(process.exitCode());
}

/// The only loader of a folder.
std::unique_ptr<IModelLoader> LoaderIn(const QString& folder)
{
    static ApplicationContext context;
    PluginHost host(context);
    host.LoadFolder(folder);
    return host.CreateService<IModelLoader>(host.ServicesOf<IModelLoader>().at(0).id);
}

} // namespace

class PluginHostTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void Refuses_data();
    void Refuses();
    void LoadsTheOthers();
    void MakesServices();
    void ReadsModelsThroughAPlugin();
    void CancelsFromASlot();
    void SurvivesItsSlots();
    void TellsOfTheFile_data();
    void TellsOfTheFile();
    void TakesTheDefaultTickRate();
    void LoadsTheExample();
    void RefusesBrokenExamples_data();
    void RefusesBrokenExamples();
    void WarnsInTheCommand();
    void MissesTheLoaderInTheCommand();

private:
    ApplicationContext m_context;
};

/// Each row is a file of the folder, in the order in which they are met.
void PluginHostTest::Refuses_data()
{
    QTest::addColumn<QString>("text"); // %1 is the file, %2 its folder

    const QString refusal = "The plug-in '%1' is not loaded: ";
    QTest::newRow("incomplete.so") << refusal
                                          + "its metadata lack \"version\", \"contract\"; build it with "
                                            "lumenta_add_plugin(), which writes them";
    QTest::newRow("no-plugin.so") << refusal
                                         + "its root object, a TestPlugin, is no IPlugin; derive the class with "
                                           "Q_PLUGIN_METADATA from IPlugin";
    QTest::newRow("other-contract.so") << refusal
                                              + "it was built for the contracts of version 0.0, and this host has "
                                                "version 0.1; build it again with Lumenta 0.1";
    QTest::newRow("other-interface.so") << refusal
                                               + "it is a plug-in for 'org.example.IElsewhere', not for "
                                                 "'com.quillwright.lumenta.IPlugin'; take it out of the folder";
    QTest::newRow("same-id.so") << "The plug-in '%1' is not used for IExporter 'paper': 'good' offers that already; "
                                   "give one of the two another id";
    QTest::newRow("text.so") << refusal + "it is no library; take it out of the folder";
    QTest::newRow("throwing-later.so") << refusal
                                              + "its root object threw when asked for its services: something of "
                                                "an unknown class; ask its author for a version that can be loaded";
    QTest::newRow("throwing.so") << refusal
                                        + "its root object threw while it was created: no licence; ask its author "
                                          "for a version that can be loaded";
    QTest::newRow("twin.so") << refusal
                                    + "a plug-in named 'good' is loaded already, from '%2/good.so'; remove one of "
                                      "the two";
    QTest::newRow("unresolved.so") << refusal
                                          + "Cannot load library %1: (%1: undefined symbol: _Z13NobodyHasThisv); "
                                            "install what is missing, or build it again";
    QTest::newRow("without-metadata.so") << refusal
                                                + "it is a library without the metadata of a plug-in; build it with "
                                                  "lumenta_add_plugin(), which takes a root class with "
                                                  "Q_PLUGIN_METADATA, or take it out of the folder";
}

void PluginHostTest::Refuses()
{
    QFETCH(QString, text);
    PluginHost host(m_context);
    host.LoadFolder(kFolder);
    const QString file = kFolder + '/' + QTest::currentDataTag();
    QStringList found;
    for (const PluginRefusal& refusal : host.Refusals())
        if (refusal.file == file)
            found += refusal.text;
    QCOMPARE(found, QStringList(text.replace("%1", file).replace("%2", kFolder)));
}

void PluginHostTest::LoadsTheOthers()
{
    PluginHost host(m_context);
    host.LoadFolder(kFolder + "/nowhere");
    for (int time = 0; time < 2; ++time)
        host.LoadFolder(kFolder);
    QStringList refused, offered;
    for (const PluginRefusal& refusal : host.Refusals())
        refused += QFileInfo(refusal.file).fileName();
    for (const PluginService& service : host.ServicesOf<IExporter>())
        offered += service.plugin + ": " + service.id + ", " + service.title;
    QCOMPARE(refused.join(' '), QString("incomplete.so no-plugin.so other-contract.so other-interface.so same-id.so "
                                        "text.so throwing-later.so throwing.so twin.so unresolved.so "
                                        "without-metadata.so"));
    QCOMPARE(offered, (QStringList{"good: paper, Paper", "good: wrong, Another", "same-id: own, Another"}));
    QVERIFY(host.ServicesOf<ILog>().empty());
}

void PluginHostTest::MakesServices()
{
    PluginHost host(m_context);
    host.LoadFolder(kFolder);
    const std::unique_ptr<IExporter> exporter = host.CreateService<IExporter>("own");
    QCOMPARE(exporter->property("context").value<void*>(), static_cast<void*>(&m_context));
    QVERIFY(host.CreateService<IExporter>("own") != exporter);
    QCOMPARE(ErrorOf([&] { host.CreateService<ILog>("own"); }),
             QString("FactoryException: Can't create object of type ILog 'own'"));
    QCOMPARE(ErrorOf([&] { host.CreateService<IExporter>("wrong"); }),
             QString("FactoryException: Can't create object of type IExporter 'wrong': the plug-in 'good' made a "
                     "QObject"));
}

void PluginHostTest::ReadsModelsThroughAPlugin()
{
    const auto loader = LoaderIn(LUMENTA_PLUGINS);
    std::vector<int> heard;
    const Model model = ReadModel(*loader, kModels + "X/Testwuson.X", [&](int percent) { heard.push_back(percent); });
    QVERIFY(heard.size() > 2 && heard.back() == 100 && std::is_sorted(heard.begin(), heard.end()));
    QVERIFY(!loader->TakeScene());
    model.scene->CalculateAnimation(0, 100.0f);
    MeshCollector collector;
    model.scene->CreateMeshes(collector);
    QCOMPARE(collector.meshes.at(0).vertices.size(), std::size_t(11196));
    QStringList extensions;
    for (const ModelFormatInfo& format : loader->GetFormats())
        extensions += format.description;
    QVERIFY(extensions.contains("Direct3D XFile (*.x)") && extensions.contains("Collada (*.dae *.xml *.zae)"));
    QCOMPARE(extensions.filter("*.glb").size(), 1);

    const auto failing = [&] { ReadModel(*loader, model.fileName, [](int percent) { throw percent; }); };
    QVERIFY_EXCEPTION_THROWN(failing(), int);
    QVERIFY(!loader->TakeScene() && loader->GetMaterials().empty());
}

void PluginHostTest::CancelsFromASlot()
{
    const auto loader = LoaderIn(LUMENTA_PLUGINS);
    const QString file = kModels + "X/Testwuson.X";
    int nHeard = 0;
    const auto connection = connect(loader.get(), &IModelLoader::loadingProgress, this, [&] {
        ++nHeard;
        loader->Cancel();
    });
    QCOMPARE(ErrorOf([&] { loader->Load(file); }),
             "LoadingException: The model '" + file + "' can't be loaded: loading was cancelled");
    QCOMPARE(nHeard, 1);
    QVERIFY(!loader->TakeScene());

    disconnect(connection);
    loader->Cancel(); // nothing is under way
    QVERIFY(!ReadModel(*loader, file).scene->animations.empty());
}

/// At each step of its way the file goes, or what tells the steps, or a slot throws.
void PluginHostTest::SurvivesItsSlots()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath("walker.x");
    for (int nCase = 0, nSteps = 100; nCase < 3 * nSteps; ++nCase) {
        QFile::copy(kModels + "X/Testwuson.X", file);
        auto loader = LoaderIn(LUMENTA_PLUGINS);
        int nStep = 0;
        connect(loader.get(), &IModelLoader::loadingProgress, this, [&] {
            if (nStep++ != nCase / 3) return;
            if (nCase % 3 == 0) QFile::remove(file);
            if (nCase % 3 == 1) loader.reset();
            if (nCase % 3 == 2) throw LogicException("in anger");
        });
        const QString error = ErrorOf([&] { loader->Load(file); });
        if (nCase == 0) // before it is opened
            QVERIFY2(error.contains(file), qPrintable(error));
        else if (nCase % 3 == 0)
            QVERIFY2(error == "nothing was thrown" || error.contains(file), qPrintable(error));
        else
            QVERIFY(nCase % 3 == 1 ? !loader && error.startsWith("LoadingException: ") : error == "in anger");
        if (loader) nSteps = nStep;
        const std::unique_ptr<SkinAnimation::Scene> taken(loader ? loader->TakeScene() : nullptr);
        QCOMPARE(taken != nullptr, error == "nothing was thrown");
    }
}

void PluginHostTest::TellsOfTheFile_data()
{
    QTest::addColumn<float>("millimeters");
    QTest::addColumn<QString>("generator");
    QTest::addColumn<QStringList>("images");

    QTest::newRow("X/Testwuson.X") << 0.0f << "" << QStringList();
    QTest::newRow("FBX/animation_with_skeleton.fbx")
        << 10.0f << "Blender (stable FBX IO) - 2.90.1 - 4.21.3" << QStringList();
    QTest::newRow("FBX/box.fbx") << 1000.0f << "FBX SDK/FBX Plugins version 2017.1" << QStringList();
    QTest::newRow("Collada/duck.dae") << 1000.0f << "Maya 8.0 | ColladaMaya v3.02 | FCollada v3.2" << QStringList();
    QTest::newRow("glTF2/BoxTextured-glTF-Binary/BoxTextured.glb") << 1000.0f << "COLLADA2GLTF" << QStringList("*0");
}

void PluginHostTest::TellsOfTheFile()
{
    QFETCH(QStringList, images);
    const auto loader = LoaderIn(LUMENTA_PLUGINS);
    const Model model = ReadModel(*loader, kModels + QTest::currentDataTag());
    QTEST(model.millimetersPerUnit, "millimeters");
    QTEST(model.metadata["SourceAsset_Generator"].toString(), "generator");
    QCOMPARE(QStringList(model.embeddedImages.keys()), images);
    for (const QImage& image : model.embeddedImages)
        QVERIFY(!image.isNull());
    QVERIFY(loader->GetImage("no such image").isNull());
}

/// The file says nothing of ticks.
void PluginHostTest::TakesTheDefaultTickRate()
{
    const auto loader = LoaderIn(LUMENTA_PLUGINS);
    const auto duration = [&] {
        return ReadModel(*loader, kModels + "3DS/RotatingCube.3DS").scene->animations.at(0)->duration;
    };
    const float usual = duration();
    loader->SetDefaultTickRate(50.0);
    for (const double ignored : {0.0, -25.0, qInf(), qQNaN()})
        loader->SetDefaultTickRate(ignored);
    QCOMPARE(duration(), usual / 2.0f);
}

/// The first face looks down, as the corners in the file say.
void PluginHostTest::LoadsTheExample()
{
    const auto loader = LoaderIn(EXAMPLE_PLUGINS);
    const Model model = ReadModel(*loader, EXAMPLE_MODEL);
    MeshCollector collector;
    model.scene->CreateMeshes(collector);
    const PosedMesh& mesh = collector.meshes.at(0);
    QCOMPARE(mesh.indices.size(), std::size_t(12));
    QCOMPARE(mesh.vertices[mesh.indices[0]].normal, (TVec3<float>{0.0f, 0.0f, -1.0f}));
    QCOMPARE(mesh.materialName, QString("plain"));
    QCOMPARE(model.materials.at(0).parameters, mesh.materialParameters);
}

/// Each row is what a file holds, or none where it is empty.
void PluginHostTest::RefusesBrokenExamples_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("error"); // %1 is the file

    const QString refusal = "LoadingException: The model '%1' can't be loaded: ";
    QTest::newRow("no file") << QByteArray()
                             << "FileException: The model file can't be read: No such file or directory\nFile: %1";
    QTest::newRow("remarks only") << QByteArray("# nothing\n\n") << refusal + "it holds no triangles";
    QTest::newRow("a word") << QByteArray("\n0 0 zero\n") << refusal + "line 2: 'zero' is no number";
    QTest::newRow("not finite") << QByteArray("inf") << refusal + "line 1: 'inf' is no number";
    QTest::newRow("ten numbers") << QByteArray("1 2 3 4 5 6 7 8 9 10")
                                 << refusal + "line 1: a triangle has 9 numbers, not 10";
}

void PluginHostTest::RefusesBrokenExamples()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, error);
    QTemporaryDir folder;
    QFile file(folder.filePath("model.tri"));
    QVERIFY(content.isEmpty() || (file.open(QIODevice::WriteOnly) && file.write(content) == content.size()));
    file.close();
    const auto loader = LoaderIn(EXAMPLE_PLUGINS);
    QCOMPARE(ErrorOf([&] { loader->Load(file.fileName()); }), error.replace("%1", file.fileName()));
}

/// A line for each refusal, and the model is read all the same.
void PluginHostTest::WarnsInTheCommand()
{
    PluginHost host(m_context);
    host.LoadFolder(kFolder);
    QString expected;
    for (const PluginRefusal& refusal : host.Refusals())
        expected += "lumenta: warning: " + refusal.text + '\n';
    QCOMPARE(ErrorsOf(LUMENTA_COMMAND, EXAMPLE_MODEL, kFolder + ":" EXAMPLE_PLUGINS), expected + '0');
}

/// A copy of the command that nothing lies beside.
void PluginHostTest::MissesTheLoaderInTheCommand()
{
    QTemporaryDir folder;
    const QString command = folder.filePath("bin/lumenta");
    QVERIFY(QDir(folder.path()).mkdir("bin") && QFile::copy(LUMENTA_COMMAND, command));
    QCOMPARE(ErrorsOf(command, EXAMPLE_MODEL, ""), "lumenta: " EXAMPLE_MODEL ": no plug-in that reads models is in '"
                                                       + folder.path() + "/" LUMENTA_PLUGIN_FOLDER "'\n1");
}

QTEST_GUILESS_MAIN(PluginHostTest)
#include "plugin_host_test.moc"
