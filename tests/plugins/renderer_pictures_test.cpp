#include "lumenta/foundation/Exceptions.h"
#include "reference/host/SampleFigure.h"
#include "reference/host/Studio.h"
#include "reference/plugins/embree-renderer/EmbreeRenderer.h"
#include "reference/plugins/painter-renderer/PainterRenderer.h"

#include <QtTest>

#include <cmath>
#include <limits>
#include <set>
#include <thread>

using namespace Host;

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr Camera kCamera{{0.0f, 0.0f, 5.0f}, {0.0f, 0.0f, 0.0f}, {0.0f, 1.0f, 0.0f}, 30.0f};

/// Two triangles. The texture stands upright on it, from its lower left corner.
PosedMesh Quad(const TVec3<float>& corner, const TVec3<float>& toRight, const TVec3<float>& toAbove)
{
    PosedMesh mesh;
    for (const TVec2<float>& at : {TVec2<float>{0, 0}, TVec2<float>{1, 0}, TVec2<float>{1, 1}, TVec2<float>{0, 1}}) {
        mesh.vertices.emplace_back();
        mesh.vertices.back().position = corner + toRight * at.x + toAbove * at.y;
        mesh.vertices.back().texCoord = {at.x, 1.0f - at.y};
    }
    mesh.indices = {0, 1, 2, 0, 2, 3};
    return mesh;
}

std::vector<PosedMesh> FigureAt(int animation, float time)
{
    const Model model = MakeSampleFigure();
    model.scene->CalculateAnimation(animation, time);
    MeshCollector collector;
    model.scene->CreateMeshes(collector);
    return collector.meshes;
}

PictureRequest RequestOf(const std::vector<PosedMesh>& meshes, QSize size, const Camera& camera, bool ground)
{
    return {&meshes, nullptr, camera, size, ground, 0.0f, 4, 0};
}

/// The meshes in a colour that nothing else has.
std::vector<PosedMesh> Red(std::vector<PosedMesh> meshes)
{
    for (PosedMesh& mesh : meshes)
        mesh.materialParameters = {{QStringLiteral("diffuse"), QColor(Qt::darkRed)}};
    return meshes;
}

bool IsRed(const QImage& picture, int x, int y)
{
    return qGreen(picture.pixel(x, y)) < 130;
}

} // namespace

/// Every function runs once with each renderer.
class RendererPictures : public QObject {
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
        m_renderer = traces ? CreateEmbreeRenderer() : CreatePainterRenderer();
    }

    // More threads than rows, too, and one per core. Progress is told on the
    // caller's thread only.
    void sameBitsForAnyNumberOfThreads()
    {
        const std::vector<PosedMesh> meshes = FigureAt(0, 300.0f);
        const Camera camera = FrameBox(BoxOf(meshes), kCamera.up, 20.0f, 15.0f, {61, 83});
        PictureRequest request = RequestOf(meshes, {61, 83}, camera, true);
        request.threads = 1;
        const QImage expected = m_renderer->Render(request, {});
        for (const int threads : {2, 7, 1000, 0}) {
            request.threads = threads;
            std::vector<int> told;
            std::set<std::thread::id> tellers{std::this_thread::get_id()};
            const QImage picture = m_renderer->Render(request, [&](int percent) {
                told.push_back(percent);
                tellers.insert(std::this_thread::get_id());
            });
            QVERIFY2(picture == expected, qPrintable(QString::number(threads)));
            QVERIFY(tellers.size() == 1 && std::is_sorted(told.begin(), told.end()));
            QVERIFY(!told.empty() && told.back() == 100);
        }
        QVERIFY_EXCEPTION_THROWN(m_renderer->Render(request, [](int) { throw 1; }), int);
    }

    // Sizes by powers of two: not a bit may differ.
    void samePictureAtAnySize()
    {
        QImage expected;
        for (const int exponent : {0, -100, 66, 100}) {
            std::vector<PosedMesh> meshes = FigureAt(0, 300.0f);
            for (PosedMesh& mesh : meshes)
                for (MeshVertex& vertex : mesh.vertices)
                    vertex.position = vertex.position * std::ldexp(1.0f, exponent);
            const TBBox<float> box = BoxOf(meshes);
            const Camera camera = FrameBox(box, kCamera.up, 20.0f, 15.0f, {61, 83});
            PictureRequest request = RequestOf(meshes, {61, 83}, camera, true);
            request.groundHeight = box.min.y;
            const QImage picture = m_renderer->Render(request, {});
            if (expected.isNull())
                expected = picture;
            QVERIFY2(picture == expected, qPrintable(QString::number(exponent)));
        }
    }

    // A square above and to the right of the middle, of any size and anywhere,
    // from where it shows as 20 by 20 pixels.
    void seesAThingWhereItIs()
    {
        const float distance = 1.5f / std::tan(15.0f * 0.017453292f);
        const std::pair<float, float> cases[] = {{1.0f, 0.0f}, {1e-3f, 0.0f}, {1e4f, 0.0f}, {1.0f, 1000.0f}};
        for (const auto& [side, x] : cases) {
            const std::vector<PosedMesh> meshes = Red({Quad({x, 0.0f, 0.0f}, {side, 0.0f, 0.0f}, {0.0f, side, 0.0f})});
            const Camera camera{{x, 0.0f, distance * side}, {x, 0.0f, 0.0f}, kCamera.up, 30.0f};
            const QImage picture = m_renderer->Render(RequestOf(meshes, {90, 60}, camera, false), {});
            for (int row = 0; row < 60; ++row)
                for (int column = 0; column < 90; ++column)
                    QCOMPARE(IsRed(picture, column, row), QRect(45, 10, 20, 20).contains(column, row));
        }
    }

    // Walking, from the front; waving, from above and from straight below. Of
    // nine pixels no more than a few on an edge may differ.
    void silhouetteIsAsTraced()
    {
        const float views[][3] = {{0.0f, 0.0f, 0.0f}, {1.0f, 130.0f, 60.0f}, {1.0f, 0.0f, -90.0f}};
        for (const auto& [animation, azimuth, elevation] : views) {
            const std::vector<PosedMesh> meshes = Red(FigureAt(static_cast<int>(animation), 430.0f));
            const Camera camera = FrameBox(BoxOf(meshes), kCamera.up, azimuth, elevation, {120, 150});
            const PictureRequest request = RequestOf(meshes, {120, 150}, camera, false);
            const QImage traced =
                CreateEmbreeRenderer()->Render(request, {}).scaled(40, 50, {}, Qt::SmoothTransformation);
            const QImage actual = m_renderer->Render(request, {}).scaled(40, 50, {}, Qt::SmoothTransformation);
            for (int y = 0; y < 50; ++y)
                for (int x = 0; x < 40; ++x)
                    QVERIFY(std::abs(qGreen(traced.pixel(x, y)) - qGreen(actual.pixel(x, y))) < 110);
        }
    }

    // Of an upright board, seen from above.
    void shadowFallsAwayFromTheSun()
    {
        const std::vector<PosedMesh> meshes{Quad({-0.3f, 0.0f, 0.0f}, {0.6f, 0.0f, 0.0f}, {0.0f, 2.0f, 0.0f})};
        const Camera camera{{0.0f, 6.0f, 6.0f}, {0.0f, 0.5f, 0.0f}, kCamera.up, 45.0f};
        const PictureRequest request = RequestOf(meshes, {120, 120}, camera, true);
        const QImage picture = m_renderer->Render(request, {});
        const Studio studio(request);
        const auto brightnessAt = [&](float towardsSun) {
            const TVec3<float> alongFloor = Normalized(TVec3<float>{studio.sun.x, 0.0f, studio.sun.z});
            const TVec3<float> place = studio.FromWorld(alongFloor * towardsSun);
            return qGray(picture.pixel(studio.ToPixel(studio.FromEye(place)).toPoint()));
        };
        QVERIFY(brightnessAt(-1.5f) < brightnessAt(1.5f) - 20);
        QVERIFY(brightnessAt(-3.0f) > brightnessAt(-1.5f) + 20);
    }

    void textureStandsUpright()
    {
        const QRgb texels[] = {qRgb(255, 0, 0), qRgb(0, 255, 0), qRgb(0, 0, 255), qRgb(255, 255, 255)};
        const QImage image(reinterpret_cast<const uchar*>(texels), 2, 2, QImage::Format_RGB32);
        const QMap<QString, QImage> textures{{QStringLiteral("four"), image.scaled(16, 16)}};
        std::vector<PosedMesh> meshes = m_square;
        meshes[0].materialParameters.insert(QStringLiteral("texture"), QStringLiteral("four"));
        PictureRequest request = RequestOf(meshes, {80, 80}, kCamera, false);
        request.textures = &textures;
        const QImage picture = m_renderer->Render(request, {});
        QString colours;
        for (const QPoint& place : {QPoint(26, 26), QPoint(54, 26), QPoint(26, 54), QPoint(54, 54)})
            for (const int shift : {16, 8, 0})
                colours += (picture.pixel(place) >> shift & 0xff) > 128 ? QLatin1Char('1') : QLatin1Char('0');
        QCOMPARE(colours, QStringLiteral("100010001111"));
    }

    // The picture shows the backdrop, floor and all.
    void leavesOutWhatCannotBeDrawn()
    {
        std::vector<PosedMesh> broken(6, m_square[0]);
        broken[0].vertices[0].position.y = kNaN;
        broken[1].vertices[0].position.x = -kInfinity;
        broken[2].vertices[2].position = {3.0f, -1.0f, 0.0f}; // on one line
        broken[2].indices = {0, 1, 2};
        broken[3].indices = {0, 1, 1, 2, 2, 2};
        broken[4].indices = {0, 1, 4, 0, 1, 0xffffffffu}; // no such vertices
        broken[5].indices = {0, 1};
        QVERIFY(BoxOf(broken).IsEmpty());
        for (const std::vector<PosedMesh>& meshes : {std::vector<PosedMesh>(), broken}) {
            PictureRequest request = RequestOf(meshes, {40, 50}, kCamera, true);
            request.groundHeight = -1.0f;
            const QImage picture = m_renderer->Render(request, {});
            QCOMPARE(picture.format(), QImage::Format_RGB32);
            for (int y = 0; y < 50; ++y) {
                const QRgb backdrop = PixelFromLinear(Studio(request).Backdrop(0.5f, static_cast<float>(y) + 0.5f));
                for (int x = 0; x < 40; ++x)
                    QVERIFY(std::abs(qGray(picture.pixel(x, y)) - qGray(backdrop)) <= 1);
            }
        }
    }

    void showsAnyMaterial_data()
    {
        QTest::addColumn<QVariantMap>("parameters");
        QTest::addColumn<int>("least");
        QTest::addColumn<int>("most");
        const double notANumber = std::numeric_limits<double>::quiet_NaN();
        const QColor black(Qt::black); // as many files have it beside a texture
        QTest::newRow("none: light clay") << QVariantMap{} << 133 << 217;
        QTest::newRow("black keeps its shape") << QVariantMap{{"diffuse", black}} << 20 << 67;
        QTest::newRow("white is not blown out") << QVariantMap{{"diffuse", QColor(Qt::white)}} << 200 << 254;
        QTest::newRow("invisible") << QVariantMap{{"diffuse", black}, {"opacity", 0.0}} << 221 << 229;
        QTest::newRow("half visible") << QVariantMap{{"diffuse", black}, {"opacity", 0.5}} << 100 << 187;
        QTest::newRow("an opacity that is no number") << QVariantMap{{"opacity", notANumber}} << 133 << 217;
        QTest::newRow("an opacity out of range") << QVariantMap{{"opacity", 7.0}} << 133 << 217;
        QTest::newRow("a texture that is missing") << QVariantMap{{"texture", "lost"}} << 133 << 217;
        QTest::newRow("a texture that is null") << QVariantMap{{"texture", "null"}} << 133 << 217;
        QTest::newRow("a texture nowhere") << QVariantMap{{"texture", "grey"}, {"diffuse", black}} << 67 << 150;
    }

    void showsAnyMaterial()
    {
        QFETCH(QVariantMap, parameters);
        QFETCH(int, least);
        QFETCH(int, most);
        QImage grey(3, 3, QImage::Format_Indexed8);
        grey.setColorTable({qRgb(100, 100, 100)});
        grey.fill(0);
        const QMap<QString, QImage> textures{{QStringLiteral("grey"), grey}, {QStringLiteral("null"), QImage()}};
        std::vector<PosedMesh> meshes = m_square;
        meshes[0].materialParameters = parameters;
        for (MeshVertex& vertex : meshes[0].vertices)
            vertex.texCoord = {kNaN, -1e-9f};
        PictureRequest request = RequestOf(meshes, {21, 21}, kCamera, false);
        request.textures = &textures;
        const int brightness = qGray(m_renderer->Render(request, {}).pixel(10, 10));
        QVERIFY2(brightness >= least && brightness <= most, qPrintable(QString::number(brightness)));
    }

    // A floor that reaches from far ahead to far behind the camera: all below
    // the horizon, but for its own line of pixels.
    void cutsWhatReachesBehindTheCamera()
    {
        const std::vector<PosedMesh> meshes =
            Red({Quad({-1e4f, -1.0f, 1e4f}, {2e4f, 0.0f, 0.0f}, {0.0f, 0.0f, -2e4f})});
        const QImage picture = m_renderer->Render(RequestOf(meshes, {40, 40}, kCamera, false), {});
        for (int y = 0; y < 40; ++y)
            for (int x = 0; x < 40; ++x)
                QVERIFY(IsRed(picture, x, y) == (y >= 20) || y == 19 || y == 20);
    }

    void takesAnyCameraAndSize()
    {
        std::vector<Camera> cameras(6, kCamera);
        cameras[0].eye = kCamera.target;
        cameras[1].eye = {kNaN, 0.0f, kInfinity};
        cameras[2].up = kCamera.eye; // along the view
        cameras[3].up = {0.0f, 0.0f, 0.0f};
        cameras[4].verticalFieldOfView = 0.0f;
        cameras[5].verticalFieldOfView = kNaN;
        for (const Camera& camera : cameras)
            for (const QSize& size : {QSize(9, 9), QSize(1, 1), QSize(300, 1), QSize(0, 0)})
                QCOMPARE(m_renderer->Render(RequestOf(m_square, size, camera, true), {}).size(), size);
        for (const float extent : {1e-38f, 1e20f, 3e38f}) { // whatever is seen of it, it ends
            const std::vector<PosedMesh> meshes{Quad({-extent, -extent, -extent}, {extent, 0, 0}, {0, extent, extent})};
            const PictureRequest request = RequestOf(meshes, {9, 9}, kCamera, true);
            QCOMPARE(m_renderer->Render(request, {}).size(), request.size);
        }
        const PictureRequest huge = RequestOf(m_square, {2000000000, 2000000000}, kCamera, false);
        QVERIFY_EXCEPTION_THROWN(m_renderer->Render(huge, {}), OutOfMemoryException);
    }

private:
    /// Fills about half of what kCamera sees.
    const std::vector<PosedMesh> m_square{Quad({-1.0f, -1.0f, 0.0f}, {2.0f, 0.0f, 0.0f}, {0.0f, 2.0f, 0.0f})};
    std::unique_ptr<IPictureRenderer> m_renderer;
};

QTEST_GUILESS_MAIN(RendererPictures)
#include "renderer_pictures_test.moc"
