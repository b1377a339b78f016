#include "lumenta/foundation/CameraMatrices.h"
#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/ISnapshotManager.h"
#include "lumenta/scene/BoundingBoxes.h"
#include "reference/host/document/Image.h"
#include "reference/host/document/Navigator.h"
#include "reference/host/document/Node.h"
#include "reference/host/document/Scene.h"
#include "reference/host/document/SceneMaterial.h"
#include "reference/host/Picture.h"
#include "reference/host/SampleFigure.h"

#include <QtTest>

#include <cmath>
#include <functional>
#include <limits>

using namespace Host;

using Move = std::function<void(FreeCamera&)>;
Q_DECLARE_METATYPE(Move)
Q_DECLARE_METATYPE(TVec3<float>)

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

using Boxes = QMap<QString, TBBox<float>>;

/// The boxes of the figure's meshes, by name, turned from y-up to z-up.
Boxes UprightBoxes(int nAnimation, float time)
{
    Model figure = MakeSampleFigure();
    if (nAnimation >= 0) figure.scene->CalculateAnimation(nAnimation, time);
    MeshCollector collector;
    figure.scene->CreateMeshes(collector);
    Boxes boxes;
    for (const PosedMesh& mesh : collector.meshes)
        for (const MeshVertex& vertex : mesh.vertices)
            boxes[mesh.name].Extend(TVec3<float>{vertex.position.x, -vertex.position.z, vertex.position.y});
    return boxes;
}

Boxes BoxesUnder(const INode* pGroup)
{
    Boxes boxes;
    for (INode* pNode : pGroup->GetChildren()) qobject_cast<IMeshNode*>(pNode)->FillBBox(boxes[pNode->GetName()]);
    return boxes;
}

} // namespace

class DocumentValues : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cameraHoldsItsLimits_data()
    {
        QTest::addColumn<Move>("move");
        QTest::addColumn<QVector<float>>("values"); // distance, heading, pitch, field of view, aspect
        QTest::addColumn<int>("changes");
        const auto row = [](const char* name, const Move& move, const QVector<float>& values, int nChanges) {
            QTest::newRow(name) << move << values << nChanges;
        };
        row("not at all", [](FreeCamera& c) { c.SetState(c.GetState()); c.Zoom(0); c.LookAt({1, 2, 3}, {1, 2, 3});
            c.SetDistance(kNan); c.SetAngles(kNan, kNan); c.FrameBox({}); }, {2, 10, 20, 60, 1}, 0);
        row("beyond the limits", [](FreeCamera& c) { c.SetState({{}, -1, 540, 100, 0, 0}); },
            {1e-4f, 180, 90, 1, 1e-4f}, 1);
        row("orbit and zoom", [](FreeCamera& c) { c.Orbit(-200, 5); c.Zoom(0.5f); }, {1, 170, 25, 60, 1}, 2);
        row("locked against hands", [](FreeCamera& c) { c.SetLocked(true); c.Orbit(1, 1); c.Pan(1, 1); c.Zoom(2);
            c.FrameBox({{0, 0, 0}, {1, 1, 1}}); c.LookFrom(eCameraViewTop); c.LookAt({1, 1, 1}, {}); c.SetDistance(3); },
            {3, 10, 20, 60, 1}, 2);
        row("home again", [](FreeCamera& c) { c.SetHome(); c.Orbit(1, 2); c.Reset(); c.Reset(); }, {2, 10, 20, 60, 1}, 2);
        row("from above, north up", [](FreeCamera& c) { c.LookFrom(eCameraViewTop);
            QVERIFY(c.GetMatrix()(2, 1) > 0.999f && GetCameraPosition(c).z > 4); }, {2, 90, 90, 60, 1}, 1);
        row("stands where it is told", [](FreeCamera& c) { c.LookAt({1, 5, 3}, {1, 2, 3});
            QVERIFY(Length(GetCameraPosition(c) - TVec3<float>{1, 5, 3}) < 1e-5f); }, {3, -90, 0, 60, 1}, 1);
        row("panned by a frame's height", [](FreeCamera& c) { c.LookFrom(eCameraViewFront); c.Pan(1, -1);
            const float height = 4 * std::tan(0.5235988f);
            QVERIFY(Length(c.GetTarget() - TVec3<float>{1 + height, 2, 3 - height}) < 1e-5f); }, {2, 90, 0, 60, 1}, 2);
    }
    void cameraHoldsItsLimits()
    {
        QFETCH(Move, move);
        FreeCamera camera;
        camera.SetState({{1, 2, 3}, 2, 10, 20, 60, 1});
        const QSignalSpy changes(&camera, &IFreeCamera::changed);
        move(camera);
        const sCameraState state = camera.GetState();
        const QVector<float> values{state.distance, state.heading, state.pitch, state.fieldOfView, state.frameAspect};
        QTEST(values, "values");
        QTEST(changes.count(), "changes");
    }

    void framedBoxesFillTheFrame_data()
    {
        QTest::addColumn<TVec3<float>>("half");
        QTest::addColumn<float>("least"); // of the frame is filled
        QTest::newRow("a cube") << TVec3<float>{1, 1, 1} << 0.9f;
        QTest::newRow("a long one") << TVec3<float>{30, 5, 9} << 0.9f;
        QTest::newRow("a grain") << TVec3<float>{0.01f, 0.02f, 0.03f} << 0.8f;
        QTest::newRow("a plate") << TVec3<float>{4, 3, 0} << 0.8f;
        QTest::newRow("a line") << TVec3<float>{0, 0, 2} << 0.4f;
    }
    void framedBoxesFillTheFrame()
    {
        QFETCH(TVec3<float>, half);
        QFETCH(float, least);
        const TVec3<float> center{7, -8, 9};
        for (int nCase = 0; nCase < 108; ++nCase) {
            const float aspect = 0.5f + static_cast<float>(nCase % 3);
            const float fieldOfView = 10.0f + 50.0f * static_cast<float>(nCase / 3 % 3);
            const float angle = 30.0f * static_cast<float>(nCase / 9);
            FreeCamera camera;
            camera.SetState({{}, 1, angle, angle / 2 - 80, fieldOfView, aspect});
            camera.FrameBox({center - half, center + half});
            Matrix view, projection;
            CalculateViewMatrix(view, camera.GetMatrix());
            CalculateProjectionMatrix(projection, fieldOfView, aspect, aspect, 0.1f, 1000);
            float filled = 0;
            for (int n = 0; n < 8; ++n) {
                TVec3<float> eye{n & 1 ? half.x : -half.x, n & 2 ? half.y : -half.y, n & 4 ? half.z : -half.z};
                eye = eye + center;
                TransformPoint(eye, view);
                QVERIFY(eye.z > 0);
                filled = std::max({filled, std::fabs(eye.x * projection(0, 0) / eye.z),
                                   std::fabs(eye.y * projection(1, 1) / eye.z)});
            }
            QVERIFY2(filled < 1 && filled > least, qPrintable(QString("%1: %2").arg(nCase).arg(double(filled))));
        }
    }

    // Every value differs from its default, and from what six digits could tell.
    void materialsGoThroughTexts()
    {
        SceneMaterial material("m");
        QMap<QString, QVariant> given{{"gloss", 7}, {"twoSided", "TRUE"}, {"castsShadows", false},
                                      {"diffuse", "0.1 1e-30 12345.678 0.333333333"}, {"refractionIndex", 1.3333333}};
        float third = 1.0f / 3;
        for (const char* name : {"opacity", "specularLevel", "emissionLevel", "bumpHeight"})
            given[name] = double(third /= 3);
        for (const char* name : {"texture", "bumpTexture"}) {
            given[name] = QString(name) + " file.png";
            given[QString(name) + "Rect"] = "0.25 -0.125 3000000000 0.0000123456789";
            given[QString(name) + "Transformation"] = "4";
            given[QString(name) + "Repeated"] = "false";
        }
        QSignalSpy changes(&material, &IMaterial::changed);
        material.SetParameters(given);
        QCOMPARE(changes.count(), 1);
        const QMap<QString, QVariant> texts = material.GetParameters();
        QCOMPARE(texts.keys(), given.keys());
        SceneMaterial copy("copy");
        copy.SetParameters(texts);
        QVERIFY(copy.IsEqualTo(material) && copy.GetParameters() == texts && copy.GetName() == "copy");
        QVERIFY(copy.GetDiffuseColor() == (ColorF{0.1f, 1e-30f, 12345.678f, 0.333333333f}));
        QVERIFY(copy.GetBumpHeight() == third && copy.IsTwoSided() && !copy.CastsShadows());
        QCOMPARE(copy.GetTextureRect(eMaterialSlotBump), QRectF(0.25, -0.125, 3e9, qreal(0.0000123456789f)));
        copy.SetParameter("gloss", QVariant());
        QVERIFY(!copy.IsEqualTo(material) && !copy.GetParameter("gloss").isValid());
        copy.Reset();
        QVERIFY(copy.IsEqualTo(SceneMaterial("new")) && copy.GetParameters().isEmpty());
        material.SetParameters(texts);
        material.SetOpacity(kNan);
        QCOMPARE(changes.count(), 1);
    }

    void parametersAreChecked_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("text"); // empty where the value is refused
        QTest::newRow("opacity, above") << QVariant(2) << "1";
        QTest::newRow("opacity, none") << QVariant("nan") << "";
        QTest::newRow("diffuse, of a screen") << QVariant("#ff0000") << "1 0 0 1";
        QTest::newRow("diffuse, a QColor") << QVariant(QColor(Qt::green)) << "0 1 0 1";
        QTest::newRow("diffuse, no such") << QVariant("#xyz") << "";
        QTest::newRow("twoSided, a number") << QVariant(1) << "true";
        QTest::newRow("twoSided, a word") << QVariant("yes") << "";
        QTest::newRow("textureTransformation, unknown") << QVariant(6) << "0";
        QTest::newRow("textureRect, short") << QVariant("1 2 3") << "";
    }
    void parametersAreChecked()
    {
        QFETCH(QVariant, value);
        QFETCH(QString, text);
        SceneMaterial material("m");
        const QString name = QString(QTest::currentDataTag()).section(',', 0, 0);
        const QVariant before = material.GetParameter(name);
        QCOMPARE(material.SetParameter(name, value), !text.isEmpty());
        QCOMPARE(material.GetParameter(name), text.isEmpty() ? before : QVariant(text));
    }

    // Where the image's corners (0, 0) and (1, 0) lie, for each transformation.
    void textureMatrixUndoesThePlacement()
    {
        const QPointF corners[][2] = {{{10, 20}, {110, 20}}, {{10, 70}, {10, 20}},  {{110, 20}, {110, 70}},
                                      {{110, 70}, {10, 70}}, {{110, 20}, {10, 20}}, {{10, 70}, {110, 70}}};
        SceneMaterial material("m");
        material.SetTextureRect(eMaterialSlotDiffuse, {10, 20, 100, 50});
        for (int i = TT_Identity; i <= TT_MirrorV; ++i) {
            material.SetParameter("textureTransformation", i);
            const QTransform back = Matrix2ToQTransform(material.GetTextureMatrix(eMaterialSlotDiffuse));
            QVERIFY((back.map(corners[i][0]) - QPointF(0, 0)).manhattanLength() < 1e-5);
            QVERIFY((back.map(corners[i][1]) - QPointF(1, 0)).manhattanLength() < 1e-5);
        }
        material.SetTextureRect(eMaterialSlotDiffuse, {10, 20, 0, 50});
        QVERIFY(material.GetTextureMatrix(eMaterialSlotDiffuse) == Matrix2(1, 0, 0, 1, 0, 0));
    }

    void imagesComeAndGo()
    {
        Scene scene;
        IMaterial& material = *scene.CreateMaterial("m");
        auto image = std::make_unique<Image>(QImage(2, 1, QImage::Format_ARGB32));
        const QSignalSpy loads(&material, &IMaterial::imageLoad);
        const QSignalSpy unloads(&material, &IMaterial::imageUnload);
        const QSignalSpy changes(&material, &IMaterial::changed);
        material.SetImage(eMaterialSlotBump, image.get());
        material.SetImage(eMaterialSlotBump, image.get());
        material.SetImageFile(eMaterialSlotBump, "f.png");
        QVERIFY(!material.GetImage(eMaterialSlotBump));
        QCOMPARE(QVector<int>({loads.count(), unloads.count(), changes.count()}), QVector<int>({1, 1, 2}));
        material.SetImage(eMaterialSlotBump, image.get());
        material.SetImage(eMaterialSlotDiffuse, image.get());
        scene.SetBackgroundImage(image.get());
        image.reset();
        QVERIFY(!material.GetImage(eMaterialSlotBump) && !material.GetImage(eMaterialSlotDiffuse));
        QVERIFY(!scene.GetBackgroundImage());
        QCOMPARE(QVector<int>({loads.count(), unloads.count(), changes.count()}), QVector<int>({3, 1, 5}));
    }

    void imagesMixAndTurn()
    {
        QImage pixels(2, 1, QImage::Format_ARGB32);
        pixels.setPixel(0, 0, qRgba(255, 0, 0, 255));
        pixels.setPixel(1, 0, qRgba(0, 255, 0, 0));
        Image image(pixels);
        QVERIFY(image.Sample({0.5f, 0.5f}, false) == (ColorF{1, 0, 0, 0.5f})); // what can't be seen shows nowhere
        QVERIFY(image.Sample({1.25f, -3}, true) == (ColorF{1, 0, 0, 1}));
        QVERIFY(image.Sample({1.25f, 0}, false) == (ColorF{0, 0, 0, 0}));
        QVERIFY(image.GetAverageColor() == (ColorF{1, 0, 0, 0.5f}) && image.HasAlpha());
        image.Rotate(-3); // a quarter turn clockwise
        QVERIFY(image.GetSize() == QSize(1, 2) && image.GetPixel(0, 0).a == 1 && image.GetPixel(5, 5).a == 0);
        image.Crop({0, 1, 9, 9});
        image.Crop({7, 7, 1, 1});
        image.SetPixel(0, 0, {0.5f, 2, -1, kNan});
        QVERIFY(image.GetSize() == QSize(1, 1) && image.ToQImage().pixel(0, 0) == qRgba(128, 255, 0, 0));
    }

    void snapshotsAreKeptInOrder()
    {
        Scene scene;
        INode* const pFigure = scene.AddModel(MakeSampleFigure(), scene.GetRoot());
        ISnapshotManager& snapshots = *scene.GetSnapshotManager();
        scene.SetAnimation(1, 400);
        const Boxes posed = BoxesUnder(pFigure);
        const ISnapshot* const pFirst = snapshots.Take("first");
        RegisterSignalArgumentTypes();
        snapshots.Take("second");
        scene.SetAnimation(-1, 0);
        scene.GetCamera()->Orbit(20, 0);
        snapshots.Restore(pFirst);
        QVERIFY(BoxesUnder(pFigure) == posed && scene.GetCamera()->GetHeading() == 90);
        const QSignalSpy inserts(&snapshots, &ISnapshotManager::insertSnapshot);
        const QSignalSpy removes(&snapshots, &ISnapshotManager::removeSnapshot);
        snapshots.Move(pFirst, 99);
        snapshots.Move(pFirst, 1);
        QVERIFY(inserts.count() == 1 && removes.count() == 1 && inserts.last()[1] == 1);
        snapshots.Remove(pFirst);
        QVERIFY_EXCEPTION_THROWN(snapshots.Restore(pFirst), InvalidParameterException);
        scene.RemoveNodes({pFigure});
        snapshots.Restore(snapshots.GetSnapshots()[0]);
        QVERIFY(scene.GetCurrentAnimation() == -1 && scene.GetAnimations().empty());
    }

    void modelsStandUprightAndPlay()
    {
        Scene scene;
        INode* const pFigure = scene.AddModel(MakeSampleFigure(), scene.GetRoot());
        const Boxes atRest = BoxesUnder(pFigure);
        const Boxes expected = UprightBoxes(-1, 0);
        QCOMPARE(atRest.keys(), expected.keys());
        for (const QString& name : expected.keys()) // as a file has it; posing rounds once more
            QVERIFY(Length(atRest[name].min - expected[name].min) + Length(atRest[name].max - expected[name].max) < 1e-5f);
        INode* const pCopy = scene.DuplicateNodes({pFigure}).front();
        Boxes before = atRest;
        for (const float time : {100.0f, 430.0f, 700.0f, 1100.0f}) {
            const int nAnimation = time < 500 ? 0 : 1;
            const QSignalSpy changes(&scene, &IScene::nodeChanged);
            scene.SetAnimation(nAnimation, time);
            scene.SetAnimation(nAnimation, time);
            QVERIFY(changes.count() >= 4 && changes.count() <= 6); // each once, where it moved
            QVERIFY(BoxesUnder(pFigure) == UprightBoxes(nAnimation, time) && BoxesUnder(pFigure) != before);
            before = BoxesUnder(pFigure);
        }
        TBBox<float> local;
        UpdateBBoxRecursive(local, scene.FindNode("hat"), Matrix());
        QVERIFY(qobject_cast<IMeshNode*>(scene.FindNode("hat"))->GetBBox() == local);
        QVERIFY(BoxesUnder(pCopy) == atRest && scene.GetAnimations().size() == 2);
        scene.SetAnimation(-1, 5);
        QVERIFY(BoxesUnder(pFigure) == atRest && scene.GetAnimationTime() == 0);
        const IMaterial* const pWool = scene.FindMaterial("wool");
        QVERIFY(pWool->GetImage(eMaterialSlotDiffuse) && pWool->GetImageFile(eMaterialSlotDiffuse) == "stripes");
        QCOMPARE(scene.GetMaterials().size(), std::size_t(6)); // felt is worn twice
        scene.SetAnimation(1, 100);
        scene.UngroupNodes({pFigure});
        QVERIFY(scene.GetAnimations().empty() && scene.GetCurrentAnimation() == -1);
    }

    void sourcesAreReadByTheHost()
    {
        Scene scene;
        QVERIFY_EXCEPTION_THROWN(scene.GetRoot()->CreateMesh("x", "chair.obj"), LoadingException);
        scene.SetModelReader([](const QString& strSource) {
            if (strSource.isEmpty()) throw FileException("f", "gone");
            Model model = MakeSampleFigure();
            model.up = {0, 0, -1};
            return model;
        });
        QVERIFY_EXCEPTION_THROWN(scene.GetRoot()->CreateMesh("x", {}), FileException);
        QVERIFY(scene.GetRoot()->GetChildren().empty());
        INode* const pChair = scene.GetRoot()->CreateMesh("Chair_1", "chair.obj");
        QCOMPARE(qobject_cast<IMeshNode*>(scene.FindNode("hat"))->GetSource(), QString("chair.obj"));
        TVec3<float> up{0, 0, -1};
        TVec3<float> front{0, -1, 0};
        TransformDirection(up, pChair->GetMatrix());
        TransformDirection(front, pChair->GetMatrix());
        QVERIFY(up == (TVec3<float>{0, 0, 1}) && front == (TVec3<float>{0, -1, 0}));
    }

    void theNavigatorPicksAndMoves()
    {
        Scene scene;
        scene.AddModel(MakeSampleFigure(), scene.GetRoot());
        Navigator tool(scene);
        IFreeCamera& camera = *scene.GetCamera();
        const TVec2<float> size{800, 600};
        const auto drag = [&](Qt::MouseButton button, Qt::KeyboardModifiers keys, const QPoint& from, const QPoint& to) {
            QVERIFY(tool.OnMousePress(from, size, button, keys) && tool.OnMouseMove(to, size, button, keys));
            QVERIFY(tool.OnMouseRelease(to, size, button, keys));
        };
        camera.LookFrom(eCameraViewFront);
        QVERIFY(!tool.OnKeyPress(Qt::Key_Delete, {}) && tool.OnKeyPress(Qt::Key_F, {}));
        drag(Qt::LeftButton, {}, {400, 330}, {401, 330});
        QCOMPARE(scene.GetSelection().front()->GetName(), QString("jumper"));
        drag(Qt::LeftButton, Qt::ControlModifier, {400, 200}, {400, 200});
        drag(Qt::LeftButton, Qt::ControlModifier, {400, 330}, {400, 330});
        QCOMPARE(scene.GetSelection().size(), std::size_t(1));
        drag(Qt::LeftButton, {}, {400, 300}, {350, 320});
        QVERIFY(camera.GetHeading() == 110 && camera.GetPitch() == 8);
        const float height = camera.GetTarget().z;
        drag(Qt::MiddleButton, {}, {0, 0}, {0, 600});
        QVERIFY(camera.GetTarget().z > height + 0.5f && !tool.OnMouseMove({}, size, {}, {}));
        const float distance = camera.GetDistance();
        QVERIFY(tool.OnWheel({400, 300}, size, 1, {}) && camera.GetDistance() < distance);
        const QString name = scene.GetSelection().front()->GetName();
        QVERIFY(tool.OnKeyPress(Qt::Key_H, {}) && !scene.FindNode(name)->IsVisible());
        QVERIFY(tool.OnKeyPress(Qt::Key_Delete, Qt::KeypadModifier) && !scene.FindNode(name));
    }
};

QTEST_GUILESS_MAIN(DocumentValues)
#include "document_values_test.moc"
