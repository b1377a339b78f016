// The pages' snippets do what the pages say.

#include "docs/snippets/Snippets.h"
#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IFreeCamera.h"
#include "lumenta/interfaces/IImage.h"
#include "lumenta/interfaces/IImageManager.h"
#include "lumenta/materials/MaterialMimeData.h"
#include "lumenta/properties/PropertyWidgetHelper.h"
#include "lumenta/skin/Scene.h"
#include "reference/host/ApplicationContext.h"
#include "reference/host/SampleFigure.h"
#include "reference/host/services/Application.h"
#include "reference/host/services/Document.h"
#include "tests/serializers/ServiceStandIns.h"

#include <QScriptEngine>
#include <QtTest>

#include <limits>

namespace {

Matrix Moved(float x, float y, float z)
{
    Matrix matrix;
    matrix.SetTranslation({x, y, z});
    return matrix;
}

Matrix Scaled(float factor)
{
    Matrix matrix;
    for (const int i : {0, 5, 10})
        matrix.m[i] = factor;
    return matrix;
}

void WriteFile(const QString& name, const QByteArray& content = "x")
{
    QVERIFY(QDir().mkpath(QFileInfo(name).path()));
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
}

/// The figure as a document, on the ground and turned upright.
struct Figure {
    Host::Scene scene;

    Figure() { scene.AddModel(Host::MakeSampleFigure(), scene.GetRoot()); }
};

/// A square metre in the plane x = 2, around the x axis, under a parent that doubles lengths.
INode* AddSquare(Host::Scene& scene)
{
    INode* const pGroup = scene.GetRoot()->CreateGroup(QStringLiteral("doubled"));
    pGroup->SetMatrix(Scaled(2.0f));
    std::vector<MeshVertex> vertices(4);
    for (std::size_t i = 0; i < 4; ++i)
        vertices[i].position = {1.0f, i % 2 ? 0.25f : -0.25f, i / 2 ? 0.25f : -0.25f};
    return scene.AddMesh(pGroup, QStringLiteral("square"), vertices, {0, 1, 2, 2, 1, 3});
}

} // namespace

class SnippetsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_folder.isValid()); }

    void matrices_read_from_left_to_right()
    {
        const TVec3<float> point = PointOfWheel({1.0f, 0.0f, 0.0f}, Scaled(2.0f), Moved(10.0f, 0.0f, 0.0f));
        QCOMPARE(point.x, 12.0f);
        TVec3<float> back = point;
        QVERIFY(MoveBack(back, Scaled(2.0f) * Moved(10.0f, 0.0f, 0.0f)));
        QCOMPARE(back.x, 1.0f);
        QVERIFY(!MoveBack(back, Scaled(0.0f)));
    }

    void a_batch_is_one_change()
    {
        Figure figure;
        QSignalSpy batches(&figure.scene, &IScene::afterSceneUpdate);
        QCOMPARE(HideMeshNodes(figure.scene, QStringLiteral("shoes")), 1);
        QCOMPARE(HideMeshNodes(figure.scene, QString()), 6);
        QCOMPARE(batches.size(), 2);
    }

    void references_follow_a_moved_document()
    {
        const QString before = m_folder.filePath("before"), after = m_folder.filePath("after");
        WriteFile(before + "/maps/oak.png");
        WriteFile(before + "/chair.lumenta");
        const QString reference = ReferenceTo(before + "/maps/oak.png", before + "/chair.lumenta");
        QCOMPARE(reference, QString("maps/oak.png"));

        QVERIFY(QDir().rename(before, after));
        const QString document = after + "/chair.lumenta", oak = QFileInfo(after + "/maps/oak.png").canonicalFilePath();
        QCOMPARE(FileOf(reference, document), oak);
        QCOMPARE(FileOf(R"(maps\oak.png)", document), oak);
        QCOMPARE(FileOf(R"(C:\Work\before\elm.png)", document), QString());
        WriteFile(after + "/elm.png");
        QCOMPARE(FileOf(R"(C:\Work\before\elm.png)", document), QFileInfo(after + "/elm.png").canonicalFilePath());

        QVERIFY(QFile::link(after, m_folder.filePath("current")));
        QCOMPARE(ReferenceTo(oak, m_folder.filePath("current/chair.lumenta")), reference);

        QCOMPARE(Rebased(reference, document, m_folder.filePath("copy.lumenta")), QString("after/maps/oak.png"));
        QCOMPARE(Rebased(reference, document, after + "/deeper/copy.lumenta"), oak);
        QCOMPARE(Rebased("gone.png", document, m_folder.filePath("copy.lumenta")), QString("gone.png"));
    }

    void a_host_takes_plugins_of_its_version()
    {
        const QString plugins = QStringLiteral(LUMENTA_PLUGINS "/lumenta-");
        Host::ApplicationContext nothing;
        const std::unique_ptr<IImageManager> images = ImageManagerOf(plugins + "qt-images.so", nothing);
        QVERIFY(images && !images->GetLoaderFormats().empty());
        QVERIFY(!ImageManagerOf(plugins + "scene-file.so", nothing));
        QVERIFY_EXCEPTION_THROWN(ImageManagerOf(QStringLiteral(LUMENTA_LIBRARY), nothing), LoadingException);
    }

    void serializers_go_by_the_name()
    {
        Host::Document document(m_application);
        document.GetScene()->GetRoot()->CreateGroup(QStringLiteral("kept"));
        const QString file = m_folder.filePath("some.lumenta");
        document.Save(file);

        Host::Scene scene;
        QCOMPARE(OpenScene(*m_application.GetSerializers(), file, scene), QStringList());
        QVERIFY(scene.FindNode("kept"));
        QVERIFY_EXCEPTION_THROWN(OpenScene(*m_application.GetSerializers(), "some.txt", scene), LoadingException);

        IImageManager& images = *m_application.GetImageManager();
        IImage* const pImage = images.CreateImage({3, 2});
        SaveImage(images, *pImage, m_folder.filePath("some.png"));
        QCOMPARE(QImage(m_folder.filePath("some.png")).size(), QSize(3, 2));
        QVERIFY_EXCEPTION_THROWN(SaveImage(images, *pImage, "some.pgn"), ImageFormatException);
        images.ReleaseImage(pImage);
    }

    void drops_come_from_here_and_elsewhere()
    {
        Host::Scene scene;
        IMaterial& material = *scene.CreateMaterial(QStringLiteral("old"));
        const MaterialMimeData oak({{"opacity", "0.5"}}, QStringLiteral("oak"));
        QVERIFY(TakeDrop(oak, material));
        QCOMPARE(material.GetName(), QString("oak"));
        QCOMPARE(material.GetOpacity(), 0.5f);

        QVERIFY(TakeDrop(MaterialMimeData({{"texture", "/oak.png"}}, QStringLiteral("oak")), material));
        QCOMPARE(material.GetImageFile(eMaterialSlotDiffuse), QString("/oak.png"));
        QCOMPARE(material.GetOpacity(), 0.5f);

        WriteFile(m_folder.filePath("elm.mtl"),
                  R"(<material version="1" name="elm"><parameter name="opacity" value="0.25"/></material>)");
        QMimeData files;
        files.setUrls({QUrl("http://example.org/"), QUrl::fromLocalFile(m_folder.filePath("elm.mtl"))});
        QVERIFY(TakeDrop(files, material));
        QCOMPARE(material.GetName(), QString("elm"));
        QCOMPARE(material.GetOpacity(), 0.25f);
        QVERIFY(!TakeDrop(QMimeData(), material));
    }

    void pixels_and_rays_find_a_square()
    {
        Host::Scene scene;
        INode* const pSquare = AddSquare(scene);
        scene.GetCamera()->LookAt({-3.0f, 0.0f, 0.0f}, {0.0f, 0.0f, 0.0f});
        QCOMPARE(TellWhatIsUnder({50, 50}, {100.0f, 100.0f}, scene), QString("square (square), 1 high"));
        QCOMPARE(TellWhatIsUnder({0, 0}, {100.0f, 100.0f}, scene), QString());

        const std::optional<float> distance = DistanceTo(*pSquare, {-1.0f, 0.0f, 0.0f}, {7.0f, 0.0f, 0.0f});
        QVERIFY(distance);
        // Less the tolerance: a ten-thousandth of the mesh's diagonal, doubled.
        QVERIFY2(std::abs(*distance - 3.0f) < 0.0005f, qPrintable(QString::number(double(*distance))));
        QVERIFY(!DistanceTo(*pSquare, {-1.0f, 2.0f, 0.0f}, {7.0f, 2.0f, 0.0f}));
        QVERIFY(!DistanceTo(*scene.GetRoot(), {-1.0f, 0.0f, 0.0f}, {7.0f, 0.0f, 0.0f}));
    }

    void sizes_and_times_are_filled_in()
    {
        QCOMPARE(PictureSize({400, 0}, 2.0f), QSize(400, 200));
        QCOMPARE(PictureSize({0, 0}, 2.0f), QSize(800, 400));
        // Half of the second of three pictures took 10 s, the first one 20 s.
        QCOMPARE(TimeLeft(20000, 10000, 3, 2, 50), QString("00:00:30"));
        QCOMPARE(TimeLeft(0, 0, 10000, 1, 0), QString("a day or more"));
    }

    void scripts_hear_of_wrong_arguments()
    {
        Host::Document document(m_application);
        IMaterial& glass = *document.GetScene()->CreateMaterial(QStringLiteral("glass"));
        QScriptEngine engine;
        AddFade(engine, document);
        engine.evaluate("fade('glass', 0.5)");
        QVERIFY(!engine.hasUncaughtException());
        QCOMPARE(glass.GetOpacity(), 0.5f);
        const auto error = [&engine](const char* program) {
            return engine.evaluate(QLatin1String(program)).toString();
        };
        QCOMPARE(error("fade('glass', 2)"), QString("Error: fade(opacity) should be in range [0, 1]"));
        QCOMPARE(error("fade(1, 1)"), QString("Error: fade(name): invalid parameter '1', string expected"));
        QCOMPARE(error("fade('tin', 1)"), QString("Error: there is no material 'tin'"));
    }

    void a_model_moves()
    {
        const Host::Model model = Host::MakeSampleFigure();
        model.scene->UpdateBoundingBox();
        const TBBox<float> before = BoxAt(*model.scene, 0.0f);
        const TBBox<float> step = BoxAt(*model.scene, 250.0f);
        QVERIFY(!before.IsEmpty() && before != step);
        QCOMPARE(BoxAt(*model.scene, 0.0f), before);
    }

    void panels_ask_for_files()
    {
        StandIn::UserInterface ui;
        Host::Document document(m_application);
        document.SetUserInterface(&ui);
        PropertyWidgetHelper helper(m_application, document);
        QString path = QStringLiteral("/old.png");
        const auto browse = [&](const char* kind, const char* answer) {
            ui.answer = QLatin1String(answer);
            return Browse(helper, QLatin1String(kind), nullptr, path) ? path : QStringLiteral("no: ") + path;
        };
        QCOMPARE(browse("image", ""), QString("no: /old.png"));
        QCOMPARE(browse("image", "/new.txt"), QString("no: /old.png"));
        QCOMPARE(browse("sound", "/new.png"), QString("no: /old.png"));
        QCOMPARE(browse("image", "/new.png"), QString("/new.png"));
    }

    void what_is_posed_is_framed_and_picked()
    {
        Figure figure;
        const auto under = [&figure](float milliseconds, const QPoint& pixel) {
            const INode* const pNode = PickAt(figure.scene, 0, milliseconds, pixel, {300.0f, 400.0f});
            return pNode ? pNode->GetName() : QString();
        };
        const QString middle = under(0.0f, {150, 200});
        const TVec3<float> target = figure.scene.GetCamera()->GetTarget();
        QVERIFY2(middle == "jumper" || middle == "trousers", qPrintable(middle));
        QCOMPARE(under(0.0f, {0, 0}), QString());
        under(250.0f, {150, 200});
        QVERIFY(figure.scene.GetCamera()->GetTarget() != target);
    }

    void bits_are_compared()
    {
        constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
        QVERIFY(IsSame(kNaN, -kNaN) && IsSame(1.0f, 1.0f) && !IsSame(0.0f, -0.0f) && !IsSame(kNaN, 0.0f));
        Matrix a, b;
        for (int i = 0; i < 16; ++i) {
            a.m[i] = 1.0f / static_cast<float>(i + 3);
            b.m[i] = static_cast<float>(i * i) * 0.1f - 7.0f;
        }
        const Matrix ours = a * b, plain = PlainProduct(a, b);
        for (int i = 0; i < 16; ++i)
            QVERIFY2(IsSame(ours.m[i], plain.m[i]), qPrintable(QString::number(i)));
    }

private:
    QTemporaryDir m_folder;
    Host::Application m_application{{QStringLiteral(LUMENTA_PLUGINS)}};
};

QTEST_GUILESS_MAIN(SnippetsTest)
#include "snippets_test.moc"
