#include "lumenta/foundation/CameraMatrices.h"
#include "lumenta/foundation/Exceptions.h"
#include "reference/host/SceneRender.h"
#include "reference/host/images/Image.h"
#include "reference/host/document/Node.h"
#include "reference/host/document/Scene.h"
#include "reference/plugins/embree-renderer/EmbreeRenderer.h"
#include "reference/plugins/painter-renderer/PainterRenderer.h"

#include <QtTest>

using namespace Host;

namespace {

constexpr ColorF kBlack{0.0f, 0.0f, 0.0f, 1.0f};
constexpr ColorF kWhite{1.0f, 1.0f, 1.0f, 1.0f};
constexpr QSize kSize{60, 60};
const QString kRed = QStringLiteral("1 0 0 1");
const QString kGreen = QStringLiteral("0 1 0 1");
const QString kLight = QStringLiteral("1 1 1 1");

Matrix Scaled(float x, float y, float z, const TVec3<float>& translation = {})
{
    return {{x, 0, 0, 0, 0, y, 0, 0, 0, 0, z, 0, translation.x, translation.y, translation.z, 1}};
}

/// Two triangles. Their front is on the side that `toRight` × `toAbove` points
/// away from: with x and z, on that of the camera.
PosedMesh Board(const TVec3<float>& centre = {}, const TVec3<float>& toRight = {1.0f, 0.0f, 0.0f},
                const TVec3<float>& toAbove = {0.0f, 0.0f, 1.0f})
{
    PosedMesh board{{}, {}, {0, 1, 2, 0, 2, 3}, {}, {}};
    for (const TVec2<float>& at : {TVec2<float>{-1, -1}, TVec2<float>{-1, 1}, TVec2<float>{1, 1}, TVec2<float>{1, -1}})
        board.vertices.push_back(
            {centre + toRight * at.x + toAbove * at.y, {}, {}, {}, {0.5f + 0.5f * at.x, 0.5f - 0.5f * at.y}, 1.0f});
    return board;
}

PosedMesh Ellipsoid(const TVec3<float>& half, float height = 0.0f)
{
    constexpr unsigned int kRings = 24, kRow = kRings + 1;
    PosedMesh mesh;
    for (unsigned int i = 0; i < kRings * kRow; ++i) {
        const unsigned int ring = i / kRow;
        const TVec3<float> n =
            DirectionFromAngles({0.0f, 90.0f - 180.0f / (kRings - 1) * float(ring), 360.0f / kRings * float(i % kRow)});
        const TVec3<float> normal = Normalized(TVec3<float>{n.x / half.x, n.y / half.y, n.z / half.z});
        mesh.vertices.push_back({{n.x * half.x, n.y * half.y, n.z * half.z + height}, normal, {}, {}, {}, 1.0f});
        if (i + kRow + 1 < kRings * kRow)
            for (const unsigned int step : {0u, 1u, kRow, 1u, kRow + 1, kRow})
                mesh.indices.push_back(i + step);
    }
    return mesh;
}

/// \return what it wears
IMaterial* Add(Scene& scene, const PosedMesh& mesh, const QVariantMap& parameters = {})
{
    INode* const node = scene.AddMesh(scene.GetRoot(), QStringLiteral("mesh"), mesh.vertices, mesh.indices);
    IMaterial* const material = scene.CreateMaterial(QStringLiteral("paint"));
    material->SetParameters(parameters);
    scene.AssignMaterial({node}, material);
    return material;
}

/// How many pixels differ by more than rounding makes them.
int DifferentPixels(const QImage& a, const QImage& b)
{
    int count = 0;
    const auto gray = [](const QImage& image, int i) {
        return qGray(image.pixel(i % image.width(), i / image.width()));
    };
    for (int i = 0; i < a.width() * a.height(); ++i)
        count += std::abs(gray(a, i) - gray(b, i)) > 4;
    return count;
}

/// Which of red, green and blue are bright.
QString Channels(QRgb pixel)
{
    const int bits = (qRed(pixel) > 128 ? 4 : 0) + (qGreen(pixel) > 128 ? 2 : 0) + (qBlue(pixel) > 128 ? 1 : 0);
    return QStringLiteral("%1").arg(bits, 3, 2, QLatin1Char('0'));
}

} // namespace

/// Every function runs once with each renderer, on a scene whose camera looks
/// along y at the origin.
class ScenePictures : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data()
    {
        QTest::addColumn<bool>("traces");
        QTest::newRow("embree") << true;
        QTest::newRow("painter") << false;
    }

    void init()
    {
        QFETCH_GLOBAL(bool, traces);
        m_traces = traces;
        m_render = std::make_unique<SceneRender>(traces ? CreateEmbreeRenderer() : CreatePainterRenderer());
        m_log.clear();
        connect(m_render.get(), &IRender::log, this, [this](const QString& line) { m_log += line; });
        m_scene = std::make_unique<Scene>();
        m_scene->GetCamera()->SetState({{0.0f, 0.0f, 0.0f}, 5.0f, 90.0f, 10.0f, 45.0f, 1.0f});
    }

    // A ball within a hidden group, both moved and scaled unevenly, one of them
    // mirrored. Its material has no back: turned inside out it would show its
    // inside. Pressed flat it shows a disc; pressed to a line, nothing.
    void placementsFollowTheirParents()
    {
        Add(*m_scene, Ellipsoid({1.0f, 1.0f, 1.0f}));
        INode* const ball = m_scene->GetRoot()->GetChildren().front();
        INode* const group = m_scene->GroupNodes({ball}, QStringLiteral("group"));
        group->SetMatrix(Scaled(-2.0f, 1.0f, 1.0f, {1.0f, 0.0f, 0.0f}));
        group->SetVisible(false);
        ball->SetMatrix(Scaled(0.6f, 0.5f, 0.4f, {0.5f, 0.0f, 0.4f}));
        QVERIFY(DifferentPixels(Draw(), DrawByHand({Ellipsoid({1.2f, 0.5f, 0.4f}, 0.4f)})) < 8);
        m_scene->SetGroundShadowEnabled(false);
        QVERIFY(DifferentPixels(Draw(), DrawByHand({Ellipsoid({1.2f, 0.5f, 0.4f}, 0.4f)})) > 50);
        m_scene->SetGroundPlaneEnabled(false);
        ball->SetMatrix(Scaled(0.5f, 0.0f, 1.0f));
        QVERIFY(DifferentPixels(Draw(), DrawByHand({})) > 200);
        ball->SetMatrix(Scaled(0.5f, 0.0f, 0.0f));
        QCOMPARE(DifferentPixels(Draw(), DrawByHand({})), 0);
    }

    void fitsTheFrameIntoThePicture()
    {
        m_scene->SetGroundPlaneEnabled(false);
        m_scene->GetCamera()->SetAngles(90.0f, 0.0f);
        Add(*m_scene, Board({}, {0.4f, 0.0f, 0.0f}, {0.0f, 0.0f, 0.4f}), {{"diffuse", kRed}});
        for (const float frameAspect : {0.4f, 1.0f, 3.0f})
            for (const QSize& size : {QSize(270, 90), QSize(90, 90), QSize(60, 180)}) {
                m_scene->GetCamera()->SetFrameAspect(frameAspect);
                const QImage picture = Draw(size);
                Matrix m;
                CalculateProjectionMatrix(m, 45.0f, frameAspect, float(size.width()) / float(size.height()), 1, 2);
                for (const float part : {0.06f, 0.1f}) { // its edge is at 0.08
                    const int x = int(float(size.width()) * 0.5f * (1.0f + part * m(0, 0)));
                    const int y = int(float(size.height()) * 0.5f * (1.0f - part * m(1, 1)));
                    QCOMPARE(Channels(picture.pixel(x, size.height() / 2) & picture.pixel(size.width() / 2, y)),
                             QString(part < 0.08f ? "100" : "111"));
                }
            }
    }

    // On a board that faces both: as bright as each other, at any distance that
    // the intensity makes up for. Then the lamp stands to the left, the board is a
    // slope that rises to the right, and at last another one stands between.
    void aLampIsAsBrightAsTheSun()
    {
        Darken(kBlack);
        IMaterial* const material = Add(*m_scene, Board(), {{"bumpHeight", 0.5}});
        m_scene->SetSunDirection({0.0f, -3.0f, 0.0f});
        m_scene->SetSunLight(kWhite);
        const int sunny = Brightness();
        m_scene->SetSunLight(kBlack);
        INode* const node = m_scene->GetRoot()->CreateLight(QStringLiteral("lamp"));
        ILightNode* const lamp = qobject_cast<ILightNode*>(node);
        for (const float distance : {1.0f, 3.0f}) {
            node->SetMatrix(Scaled(7.0f, 7.0f, 7.0f, {0.0f, -distance, 0.0f}));
            lamp->SetIntensity(distance * distance);
            QVERIFY2(sunny > 100 && std::abs(Brightness() - sunny) < 5, qPrintable(QString::number(Brightness())));
        }
        QCOMPARE(m_log.isEmpty(), m_traces); // the painter tells of shadows
        node->SetMatrix(Scaled(1.0f, 1.0f, 1.0f, {-3.0f, -3.0f, 0.0f}));
        const uchar pixels[] = {0, 64, 128, 192};
        Image slope(QImage(pixels, 4, 1, QImage::Format_Grayscale8));
        const int flat = Brightness();
        material->SetImage(eMaterialSlotBump, &slope);
        QCOMPARE(Brightness() > flat + 5, m_traces);
        IMaterial* const other = Add(*m_scene, Board({-1.5f, -1.5f, 0.0f}, {0.5f, -0.5f, 0.0f}, {0.0f, 0.0f, 0.5f}));
        QCOMPARE(Brightness() < 3, m_traces);
        other->SetCastsShadows(false);
        QVERIFY(Brightness() > 50);
        node->SetVisible(false);
        QVERIFY(Brightness() < 3);
        material->UnloadImages();
    }

    // A board in the dark before a white wall.
    void materials_data()
    {
        QTest::addColumn<QString>("image"); ///< Slot and colour: all of it is of that. Or "back".
        QTest::addColumn<QVariantMap>("parameters");
        QTest::addColumn<QString>("channels");
        QTest::newRow("unlit") << "" << QVariantMap{{"diffuse", kLight}} << "000";
        QTest::newRow("an ambient part") << "" << QVariantMap{{"diffuse", kLight}, {"ambient", kRed}} << "100";
        QTest::newRow("glows by an image") << "5 #ff0000" << QVariantMap{{"emissive", kLight}} << "100";
        QVariantMap glow{{"emissive", kLight}, {"emissionTextureInverted", true}};
        QTest::newRow("an image turned over") << "5 #ff0000" << glow << "011";
        glow = {{"emissive", kLight}, {"emissionTextureRepeated", false}, {"emissionTextureRect", "0.6 0 1 1"}};
        QTest::newRow("an image elsewhere") << "5 #ff0000" << glow << "111";
        QTest::newRow("clear and tinted") << "" << QVariantMap{{"opacity", 0.0}, {"filter", kGreen}} << "010";
        QTest::newRow("clear by an image") << "3 #000000" << QVariantMap{} << "111";
        QTest::newRow("opaque by an image") << "3 #000000" << QVariantMap{{"opacityTextureInverted", true}} << "000";
        QTest::newRow("a hole in the colour") << "0 #00ff0000" << QVariantMap{} << "111";
        QTest::newRow("its back") << "back" << QVariantMap{} << "111";
        QTest::newRow("its back, two-sided") << "back" << QVariantMap{{"twoSided", true}} << "000";
    }

    void materials()
    {
        QFETCH(QVariantMap, parameters);
        QFETCH(QString, image);
        QFETCH(QString, channels);
        Darken(kWhite);
        const QRgb pixel = QColor(image.section(QLatin1Char(' '), 1)).rgba();
        Image filled(QImage(reinterpret_cast<const uchar*>(&pixel), 1, 1, QImage::Format_ARGB32));
        const float side = image == QLatin1String("back") ? -1.0f : 1.0f;
        IMaterial* const material = Add(*m_scene, Board({}, {side, 0.0f, 0.0f}, {0.0f, 0.0f, 1.0f}), parameters);
        if (image.contains(QLatin1Char(' ')))
            material->SetImage(static_cast<eMaterialSlot>(image.at(0).digitValue()), &filled);
        QCOMPARE(Channels(Draw().pixel(30, 30)), channels);
        material->UnloadImages();
    }

    void backgrounds()
    {
        Darken({1.0f, 0.0f, 0.2f, 1.0f});
        const QRgb colour = Draw().pixel(30, 50);
        QVERIFY(qRed(colour) > 253 && qGreen(colour) < 2 && std::abs(qBlue(colour) - 124) < 3);
        const QRgb pixels[] = {qRgb(0, 255, 0), qRgb(0, 0, 255)};
        Image image(QImage(reinterpret_cast<const uchar*>(pixels), 2, 1, QImage::Format_RGB32).scaled(20, 10));
        m_scene->SetBackgroundMode(eBackgroundImage);
        QCOMPARE(Channels(Draw().pixel(3, 3)), QStringLiteral("100")); // there is none yet
        m_scene->SetBackgroundImage(&image);
        QCOMPARE(Channels(Draw().pixel(3, 3)) + Channels(Draw().pixel(56, 56)), QStringLiteral("010001"));
    }

    // A red board to the right and behind: seen from above, and in a mirror.
    void looksStraightDownAndIntoMirrors()
    {
        Add(*m_scene, Board({1.5f, 1.0f, 0.0f}, {0.5f, 0.0f, 0.0f}, {0.0f, 0.5f, 0.0f}), {{"diffuse", kRed}});
        m_scene->GetCamera()->LookFrom(eCameraViewTop);
        QCOMPARE(Channels(Draw().pixel(51, 16)) + Channels(Draw().pixel(51, 44)), QStringLiteral("100111"));
        const QVariantMap parameters{{"diffuse", "0 0 0 1"}, {"reflectionLevel", 1.0}, {"reflection", kGreen}};
        Add(*m_scene, Board({}, {0.5f, 0.0f, 0.0f}, {0.0f, 0.5f, 0.0f}), parameters);
        QCOMPARE(Channels(Draw().pixel(30, 30)), QString(m_traces ? "010" : "000"));
        QCOMPARE(m_log.isEmpty(), m_traces); // the painter tells of reflections
    }

    void tellsOfEachPictureInOrder()
    {
        Add(*m_scene, Board());
        std::vector<int> told, codes;
        int stopAt = 200;
        const QObject context;
        connect(m_render.get(), &IRender::done, &context, [&](eRenderExitCode code) { codes.push_back(code); }); // clazy:exclude=lambda-in-connect
        connect(m_render.get(), &IRender::progress, &context, [&](int percent) {
            told.push_back(percent); // clazy:exclude=lambda-in-connect
            QVERIFY_EXCEPTION_THROWN(Draw(), LogicException);
            if (percent >= stopAt) m_render->Stop(); // clazy:exclude=lambda-in-connect
        });
        const QImage whole = Draw();
        QVERIFY(told.front() == 0 && told.back() == 100 && std::is_sorted(told.begin(), told.end()));
        for (const int percent : {0, 20, 100}) { // the last time it is complete already
            stopAt = percent;
            QVERIFY((Draw() == whole) == (percent == 100) && m_render->GetImage().size() == kSize);
        }
        Draw({2000000000, 2000000000});
        QVERIFY((codes == std::vector<int>{0, 1, 1, 0, 2}) && m_log.size() == 1); // whole, stopped twice, whole, failed
    }

    // In each signal, the first or a later one. The mirror makes the painter log.
    void slotsMayThrowOrDelete()
    {
        Add(*m_scene, Board(), {{"reflectionLevel", 1.0}});
        const sRenderSettings settings{kSize, 1, 1};
        for (int nCase = 0; nCase < 16; ++nCase) {
            auto render = std::make_unique<SceneRender>(m_traces ? CreateEmbreeRenderer() : CreatePainterRenderer());
            int nDone = 0, nLeft = nCase / 4; // signals of that kind that pass before
            const auto worst = [&, deletes = nCase % 4 < 3] {
                if (nLeft-- != 0) return;
                if (deletes) return render.reset();
                QTest::ignoreMessage(QtWarningMsg, "A receiver of 'done' threw: something of an unknown class");
                throw 5;
            };
            connect(render.get(), &IRender::done, this, [&] { ++nDone; });
            if (nCase % 4 == 0) connect(render.get(), &IRender::progress, this, worst);
            if (nCase % 4 == 1) connect(render.get(), &IRender::log, this, worst);
            if (nCase % 4 >= 2) connect(render.get(), &IRender::done, this, worst);
            render->Start(*m_scene, settings);
            QVERIFY(nDone == 1 || !render);
            if (!render) continue;
            render->Start(*m_scene, settings); // the last one has ended
            QVERIFY(nDone == 2 || !render);
        }
    }

private:
    /// No light at all, before a wall of that colour.
    void Darken(const ColorF& wall)
    {
        m_scene->SetSunLight(kBlack);
        m_scene->SetAmbientLight(kBlack);
        m_scene->SetBackgroundMode(eBackgroundColor);
        m_scene->SetBackgroundColor(wall);
        m_scene->SetGroundPlaneEnabled(false);
    }

    QImage Draw(QSize size = kSize)
    {
        m_render->Start(*m_scene, {size, 16, 1});
        return m_render->GetImage();
    }

    int Brightness() { return qGray(Draw().pixel(30, 30)); }

    /// As the renderer draws what no scene says, from the scene's camera.
    QImage DrawByHand(const std::vector<PosedMesh>& meshes)
    {
        const IFreeCamera& camera = *m_scene->GetCamera();
        const PictureRequest request{
            &meshes, nullptr, {GetCameraPosition(camera), camera.GetTarget(), {0, 0, 1}, 45.0f}, kSize};
        return (m_traces ? CreateEmbreeRenderer() : CreatePainterRenderer())->Render(request, {});
    }

    bool m_traces = false;
    std::unique_ptr<Scene> m_scene;
    std::unique_ptr<IRender> m_render;
    QStringList m_log;
};

QTEST_GUILESS_MAIN(ScenePictures)
#include "scene_pictures_test.moc"
