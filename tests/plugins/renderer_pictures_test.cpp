#include "lumenta/foundation/Exceptions.h"
#include "reference/host/SampleFigure.h"
#include "reference/host/Studio.h"
#include "reference/plugins/embree-renderer/EmbreeRenderer.h"
#include "reference/plugins/painter-renderer/PainterRenderer.h"

#include <QtTest>

#include <cmath>
#include <limits>
#include <thread>

using namespace Host;

Q_DECLARE_METATYPE(Host::PosedMesh)
Q_DECLARE_METATYPE(TVec3<float>)

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

std::unique_ptr<IPictureRenderer> Renderer(const QString& name)
{
    return name == QStringLiteral("embree") ? CreateEmbreeRenderer() : CreatePainterRenderer();
}

MeshVertex VertexAt(const TVec3<float>& position, const TVec2<float>& texCoord = {0.0f, 0.0f})
{
    MeshVertex vertex{};
    vertex.position = position;
    vertex.texCoord = texCoord;
    return vertex;
}

/// Two triangles; the corners anticlockwise from the lower left.
PosedMesh Quad(const TVec3<float>& a, const TVec3<float>& b, const TVec3<float>& c, const TVec3<float>& d)
{
    PosedMesh mesh;
    mesh.vertices = {VertexAt(a, {0.0f, 1.0f}), VertexAt(b, {1.0f, 1.0f}), VertexAt(c, {1.0f, 0.0f}),
                     VertexAt(d, {0.0f, 0.0f})};
    mesh.indices = {0, 1, 2, 0, 2, 3};
    return mesh;
}

PosedMesh UnitQuad()
{
    return Quad({-1.0f, -1.0f, 0.0f}, {1.0f, -1.0f, 0.0f}, {1.0f, 1.0f, 0.0f}, {-1.0f, 1.0f, 0.0f});
}

PosedMesh Sphere(const TVec3<float>& centre, float radius)
{
    constexpr unsigned int kColumns = 64;
    constexpr unsigned int kRows = 32;
    constexpr float kPi = 3.14159265f;
    PosedMesh mesh;
    for (unsigned int row = 0; row <= kRows; ++row) {
        for (unsigned int column = 0; column <= kColumns; ++column) {
            const float polar = kPi * static_cast<float>(row) / kRows;
            const float around = 2.0f * kPi * static_cast<float>(column) / kColumns;
            const TVec3<float> normal{std::sin(polar) * std::cos(around), std::cos(polar),
                                      std::sin(polar) * std::sin(around)};
            mesh.vertices.push_back(VertexAt(centre + normal * radius));
            mesh.vertices.back().normal = normal;
        }
    }
    for (unsigned int row = 0; row < kRows; ++row) {
        for (unsigned int column = 0; column < kColumns; ++column) {
            const unsigned int at = row * (kColumns + 1) + column;
            const unsigned int below = at + kColumns + 1;
            mesh.indices.insert(mesh.indices.end(), {at, at + 1, below, at + 1, below + 1, below});
        }
    }
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

PictureRequest RequestOf(const std::vector<PosedMesh>& meshes, QSize size)
{
    PictureRequest request;
    request.meshes = &meshes;
    request.size = size;
    request.camera = {{0.0f, 0.0f, 5.0f}, {0.0f, 0.0f, 0.0f}, {0.0f, 1.0f, 0.0f}, 30.0f};
    request.ground = false;
    return request;
}

int Brightness(QRgb pixel)
{
    return qRed(pixel) + qGreen(pixel) + qBlue(pixel);
}

int LargestDifference(QRgb a, QRgb b)
{
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
}

/// Where the picture shows a mesh: anything but the bare backdrop.
class Coverage {
public:
    Coverage(IPictureRenderer& renderer, const PictureRequest& request)
        : m_picture(renderer.Render(request, {}))
    {
        const std::vector<PosedMesh> nothing;
        PictureRequest empty = request;
        empty.meshes = &nothing;
        m_backdrop = renderer.Render(empty, {});
    }

    bool At(int x, int y) const
    {
        return m_picture.rect().contains(x, y) && LargestDifference(m_picture.pixel(x, y), m_backdrop.pixel(x, y)) > 4;
    }

    /// Whether all pixels within `distance` are covered, or none is.
    bool IsUniformAround(int x, int y, int distance) const
    {
        for (int dy = -distance; dy <= distance; ++dy)
            for (int dx = -distance; dx <= distance; ++dx)
                if (At(x + dx, y + dy) != At(x, y))
                    return false;
        return true;
    }

private:
    QImage m_picture;
    QImage m_backdrop;
};

void AddRendererRows()
{
    QTest::addColumn<QString>("renderer");
    QTest::newRow("embree") << QStringLiteral("embree");
    QTest::newRow("painter") << QStringLiteral("painter");
}

} // namespace

class RendererPictures : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sameBitsForAnyNumberOfThreads_data()
    {
        QTest::addColumn<int>("threads");
        QTest::newRow("two") << 2;
        QTest::newRow("seven") << 7;
        QTest::newRow("more than there are rows") << 1000;
        QTest::newRow("one per core") << 0;
    }

    void sameBitsForAnyNumberOfThreads()
    {
        QFETCH(int, threads);
        const std::vector<PosedMesh> meshes = FigureAt(0, 300.0f);
        PictureRequest request = RequestOf(meshes, {61, 83});
        request.camera = FrameBox(BoxOf(meshes), {0.0f, 1.0f, 0.0f}, 20.0f, 15.0f, request.size);
        request.ground = true;
        request.samplesPerPixel = 5;
        request.threads = 1;
        const QImage expected = CreateEmbreeRenderer()->Render(request, {});
        request.threads = threads;
        QCOMPARE(CreateEmbreeRenderer()->Render(request, {}), expected);
    }

    void seesASphereWhereItIs_data()
    {
        QTest::addColumn<QString>("renderer");
        QTest::addColumn<float>("radius");
        QTest::addColumn<float>("x");
        for (const char* renderer : {"embree", "painter"}) {
            const QString name = QString::fromLatin1(renderer);
            QTest::addRow("%s, of common size", renderer) << name << 1.0f << 0.0f;
            QTest::addRow("%s, a thousandth", renderer) << name << 1e-3f << 0.0f;
            QTest::addRow("%s, ten thousand", renderer) << name << 1e4f << 0.0f;
            QTest::addRow("%s, far from the origin", renderer) << name << 1.0f << 1000.0f;
        }
    }

    void seesASphereWhereItIs()
    {
        QFETCH(QString, renderer);
        QFETCH(float, radius);
        QFETCH(float, x);
        const std::vector<PosedMesh> meshes{Sphere({x, 0.0f, 0.0f}, radius)};
        PictureRequest request = RequestOf(meshes, {90, 60});
        request.camera = {{x, 0.0f, 5.0f * radius}, {x, 0.0f, 0.0f}, {0.0f, 1.0f, 0.0f}, 30.0f};
        const Coverage coverage(*Renderer(renderer), request);

        // A sphere of radius 1 seen from 5 shows a disc of tangent 1 / sqrt(24).
        const double pixelsPerTangent = 30.0 / std::tan(15.0 * M_PI / 180.0);
        const double discRadius = pixelsPerTangent / std::sqrt(24.0);
        for (int row = 0; row < 60; ++row) {
            for (int column = 0; column < 90; ++column) {
                const double distance = std::hypot(column + 0.5 - 45.0, row + 0.5 - 30.0);
                if (std::fabs(distance - discRadius) > 1.5)
                    QVERIFY2(coverage.At(column, row) == (distance < discRadius),
                             qPrintable(QStringLiteral("at %1, %2").arg(column).arg(row)));
            }
        }
    }

    void renderersAgreeOnTheSilhouette_data()
    {
        QTest::addColumn<int>("animation");
        QTest::addColumn<float>("azimuth");
        QTest::addColumn<float>("elevation");
        QTest::newRow("walking, from the front") << 0 << 0.0f << 0.0f;
        QTest::newRow("waving, from above") << 1 << 130.0f << 60.0f;
        QTest::newRow("waving, from straight below") << 1 << 0.0f << -90.0f;
    }

    void renderersAgreeOnTheSilhouette()
    {
        QFETCH(int, animation);
        QFETCH(float, azimuth);
        QFETCH(float, elevation);
        std::vector<PosedMesh> meshes = FigureAt(animation, 430.0f);
        for (PosedMesh& mesh : meshes) // nothing may look like the backdrop
            mesh.materialParameters = {{QStringLiteral("diffuse"), QColor(Qt::darkRed)}};
        PictureRequest request = RequestOf(meshes, {120, 160});
        request.camera = FrameBox(BoxOf(meshes), {0.0f, 1.0f, 0.0f}, azimuth, elevation, request.size);
        request.samplesPerPixel = 4;
        const Coverage traced(*CreateEmbreeRenderer(), request);
        const Coverage painted(*CreatePainterRenderer(), request);
        int covered = 0;
        for (int y = 0; y < 160; ++y) {
            for (int x = 0; x < 120; ++x) {
                covered += traced.At(x, y) ? 1 : 0;
                if (traced.IsUniformAround(x, y, 1))
                    QVERIFY2(traced.At(x, y) == painted.At(x, y),
                             qPrintable(QStringLiteral("at %1, %2").arg(x).arg(y)));
            }
        }
        QVERIFY2(covered > 120 * 160 / 10, qPrintable(QString::number(covered)));
    }

    void shadowFallsAwayFromTheSun_data() { AddRendererRows(); }

    void shadowFallsAwayFromTheSun()
    {
        QFETCH(QString, renderer);
        const std::vector<PosedMesh> meshes{Sphere({0.0f, 0.5f, 0.0f}, 0.5f)};
        PictureRequest request = RequestOf(meshes, {120, 120});
        request.camera = {{0.0f, 6.0f, 6.0f}, {0.0f, 0.5f, 0.0f}, {0.0f, 1.0f, 0.0f}, 35.0f};
        request.ground = true;
        const QImage picture = Renderer(renderer)->Render(request, {});

        const Studio studio(request);
        const TVec3<float> alongFloor = Normalized(TVec3<float>{studio.sun.x, 0.0f, studio.sun.z});
        const auto brightnessAt = [&](float towardsSun) {
            const TVec3<float> place = studio.FromWorld(alongFloor * towardsSun);
            const QPointF pixel = studio.ToPixel(studio.FromEye(place));
            return Brightness(picture.pixel(pixel.toPoint()));
        };
        QVERIFY(brightnessAt(-0.9f) < brightnessAt(0.9f) - 60);
        QVERIFY(brightnessAt(-3.0f) > brightnessAt(-0.9f) + 60);
    }

    void floorWithoutAModelIsTheBackdrop_data() { AddRendererRows(); }

    void floorWithoutAModelIsTheBackdrop()
    {
        QFETCH(QString, renderer);
        const std::vector<PosedMesh> nothing;
        PictureRequest request = RequestOf(nothing, {40, 50});
        request.camera.eye = {0.0f, 2.0f, 5.0f};
        request.ground = true;
        const QImage picture = Renderer(renderer)->Render(request, {});
        QCOMPARE(picture.format(), QImage::Format_RGB32);
        QCOMPARE(picture.size(), request.size);
        const Studio studio(request);
        for (int y = 0; y < 50; ++y)
            for (int x = 0; x < 40; ++x)
                QVERIFY(LargestDifference(picture.pixel(x, y),
                                          PixelFromLinear(studio.Backdrop(static_cast<float>(y) + 0.5f))) <= 1);
    }

    void textureStandsUpright_data() { AddRendererRows(); }

    void textureStandsUpright()
    {
        QFETCH(QString, renderer);
        QImage image(2, 2, QImage::Format_RGB32);
        image.setPixel(0, 0, qRgb(255, 0, 0));
        image.setPixel(1, 0, qRgb(0, 255, 0));
        image.setPixel(0, 1, qRgb(0, 0, 255));
        image.setPixel(1, 1, qRgb(255, 255, 255));
        const QMap<QString, QImage> textures{{QStringLiteral("four"), image.scaled(16, 16)}};
        std::vector<PosedMesh> meshes{UnitQuad()};
        meshes[0].materialParameters.insert(QStringLiteral("texture"), QStringLiteral("four"));
        meshes[0].materialParameters.insert(QStringLiteral("diffuse"), QColor(Qt::black)); // as many files have it
        PictureRequest request = RequestOf(meshes, {80, 80});
        request.textures = &textures;
        const QImage picture = Renderer(renderer)->Render(request, {});

        const auto coloursAt = [&](int x, int y) {
            const QRgb pixel = picture.pixel(x, y);
            return QStringLiteral("%1%2%3")
                .arg(qRed(pixel) > 128)
                .arg(qGreen(pixel) > 128)
                .arg(qBlue(pixel) > 128);
        };
        QCOMPARE(coloursAt(26, 26), QStringLiteral("100"));
        QCOMPARE(coloursAt(54, 26), QStringLiteral("010"));
        QCOMPARE(coloursAt(26, 54), QStringLiteral("001"));
        QCOMPARE(coloursAt(54, 54), QStringLiteral("111"));
    }

    void leavesOutWhatCannotBeDrawn_data()
    {
        QTest::addColumn<PosedMesh>("mesh");
        PosedMesh mesh = UnitQuad();
        mesh.vertices[0].position.y = kNaN;
        QTest::newRow("a coordinate is not a number") << mesh;
        mesh.vertices[0].position = {-kInfinity, 0.0f, 0.0f};
        QTest::newRow("a coordinate is infinite") << mesh;
        mesh = UnitQuad();
        mesh.indices = {0, 1, 1, 2, 2, 2};
        QTest::newRow("corners coincide") << mesh;
        mesh.vertices[2].position = {3.0f, -1.0f, 0.0f};
        mesh.indices = {0, 1, 2};
        QTest::newRow("corners on one line") << mesh;
        mesh = UnitQuad();
        mesh.indices = {0, 1, 4, 0, 1, 0xffffffffu};
        QTest::newRow("there is no such vertex") << mesh;
        mesh.indices = {0, 1};
        QTest::newRow("the last triangle is incomplete") << mesh;
    }

    void leavesOutWhatCannotBeDrawn()
    {
        QFETCH(PosedMesh, mesh);
        const std::vector<PosedMesh> nothing;
        const std::vector<PosedMesh> broken{mesh};
        QVERIFY(BoxOf(broken).IsEmpty());
        for (const char* renderer : {"embree", "painter"}) {
            PictureRequest request = RequestOf(nothing, {32, 24});
            request.ground = true;
            request.groundHeight = -2.0f;
            const QImage expected = Renderer(QString::fromLatin1(renderer))->Render(request, {});
            request.meshes = &broken;
            QCOMPARE(Renderer(QString::fromLatin1(renderer))->Render(request, {}), expected);
        }
    }

    void showsAnyMaterial_data()
    {
        QTest::addColumn<QString>("parameter");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<float>("texCoord");
        QTest::addColumn<int>("least");
        QTest::addColumn<int>("most");
        const double notANumber = std::numeric_limits<double>::quiet_NaN();
        const QVariant grey(QStringLiteral("grey"));
        QTest::newRow("none: light clay") << QString() << QVariant() << 0.0f << 400 << 650;
        QTest::newRow("black keeps its shape") << "diffuse" << QVariant(QColor(Qt::black)) << 0.0f << 60 << 200;
        QTest::newRow("white is not blown out") << "diffuse" << QVariant(QColor(Qt::white)) << 0.0f << 600 << 764;
        QTest::newRow("a colour that is a text") << "diffuse" << QVariant(QStringLiteral("none")) << 0.0f << 400 << 650;
        QTest::newRow("an extended colour") << "diffuse" << QVariant(QColor(QColor::ExtendedRgb)) << 0.0f << 60 << 650;
        QTest::newRow("an opacity that is no number") << "opacity" << QVariant(notANumber) << 0.0f << 400 << 650;
        QTest::newRow("an opacity out of range") << "opacity" << QVariant(7.0) << 0.0f << 400 << 650;
        QTest::newRow("a shininess that is no number") << "shininess" << QVariant(notANumber) << 0.0f << 400 << 650;
        QTest::newRow("a texture that is missing") << "texture" << QVariant("lost") << 0.0f << 400 << 650;
        QTest::newRow("a texture that is null") << "texture" << QVariant("null") << 0.0f << 400 << 650;
        QTest::newRow("a texture nowhere") << "texture" << grey << kNaN << 200 << 450;
        QTest::newRow("a texture at infinity") << "texture" << grey << kInfinity << 200 << 450;
        QTest::newRow("a texture far out") << "texture" << grey << -3e38f << 200 << 450;
        QTest::newRow("a texture just below 0") << "texture" << grey << -1e-9f << 200 << 450;
    }

    void showsAnyMaterial()
    {
        QFETCH(QString, parameter);
        QFETCH(QVariant, value);
        QFETCH(float, texCoord);
        QFETCH(int, least);
        QFETCH(int, most);
        QImage grey(3, 3, QImage::Format_Indexed8);
        grey.setColorTable({qRgb(100, 100, 100)});
        grey.fill(0);
        const QMap<QString, QImage> textures{{QStringLiteral("grey"), grey}, {QStringLiteral("null"), QImage()}};
        std::vector<PosedMesh> meshes{UnitQuad()};
        meshes[0].materialParameters.insert(parameter, value);
        for (MeshVertex& vertex : meshes[0].vertices)
            vertex.texCoord = {texCoord, texCoord};
        PictureRequest request = RequestOf(meshes, {21, 21});
        request.textures = &textures;
        for (const char* renderer : {"embree", "painter"}) {
            const int brightness =
                Brightness(Renderer(QString::fromLatin1(renderer))->Render(request, {}).pixel(10, 10));
            QVERIFY2(brightness >= least && brightness <= most,
                     qPrintable(QStringLiteral("%1: %2").arg(QString::fromLatin1(renderer)).arg(brightness)));
        }
    }

    void opacityLetsTheBackdropThrough_data() { AddRendererRows(); }

    void opacityLetsTheBackdropThrough()
    {
        QFETCH(QString, renderer);
        std::vector<PosedMesh> meshes{UnitQuad()};
        meshes[0].materialParameters.insert(QStringLiteral("diffuse"), QColor(Qt::black));
        const PictureRequest request = RequestOf(meshes, {21, 21});
        const auto brightnessAt = [&](double opacity) {
            meshes[0].materialParameters.insert(QStringLiteral("opacity"), opacity);
            return Brightness(Renderer(renderer)->Render(request, {}).pixel(10, 10));
        };
        const int backdrop = Brightness(PixelFromLinear(Studio(request).Backdrop(10.5f)));
        QVERIFY(std::abs(brightnessAt(0.0) - backdrop) <= 3);
        QVERIFY(brightnessAt(0.5) < backdrop - 60);
        QVERIFY(brightnessAt(0.5) > brightnessAt(1.0) + 60);
    }

    // A floor that reaches from far ahead to far behind the camera.
    void cutsWhatReachesBehindTheCamera_data() { AddRendererRows(); }

    void cutsWhatReachesBehindTheCamera()
    {
        QFETCH(QString, renderer);
        const std::vector<PosedMesh> meshes{Quad({-1e4f, -1.0f, 1e4f}, {1e4f, -1.0f, 1e4f}, {1e4f, -1.0f, -1e4f},
                                                 {-1e4f, -1.0f, -1e4f})};
        const Coverage coverage(*Renderer(renderer), RequestOf(meshes, {40, 40}));
        for (int x = 0; x < 40; ++x) {
            for (int y = 0; y < 19; ++y)
                QVERIFY(!coverage.At(x, y));
            for (int y = 21; y < 40; ++y)
                QVERIFY(coverage.At(x, y));
        }
    }

    void takesAnyCameraAndSize_data()
    {
        QTest::addColumn<TVec3<float>>("eye");
        QTest::addColumn<TVec3<float>>("up");
        QTest::addColumn<float>("fieldOfView");
        QTest::addColumn<QSize>("size");
        const TVec3<float> eye{0.0f, 0.0f, 5.0f};
        const TVec3<float> up{0.0f, 1.0f, 0.0f};
        QTest::newRow("one pixel") << eye << up << 30.0f << QSize(1, 1);
        QTest::newRow("a line of pixels") << eye << up << 30.0f << QSize(300, 1);
        QTest::newRow("no pixel") << eye << up << 30.0f << QSize(0, 5);
        QTest::newRow("eye in the target") << TVec3<float>{0.0f, 0.0f, 0.0f} << up << 30.0f << QSize(9, 9);
        QTest::newRow("eye nowhere") << TVec3<float>{kNaN, 0.0f, kInfinity} << up << 30.0f << QSize(9, 9);
        QTest::newRow("up along the view") << eye << TVec3<float>{0.0f, 0.0f, 2.0f} << 30.0f << QSize(9, 9);
        QTest::newRow("no up") << eye << TVec3<float>{0.0f, 0.0f, 0.0f} << 30.0f << QSize(9, 9);
        QTest::newRow("no field of view") << eye << up << 0.0f << QSize(9, 9);
        QTest::newRow("a field of view that is no number") << eye << up << kNaN << QSize(9, 9);
    }

    void takesAnyCameraAndSize()
    {
        QFETCH(TVec3<float>, eye);
        QFETCH(TVec3<float>, up);
        QFETCH(float, fieldOfView);
        QFETCH(QSize, size);
        const std::vector<PosedMesh> meshes{UnitQuad()};
        PictureRequest request = RequestOf(meshes, size);
        request.camera.eye = eye;
        request.camera.up = up;
        request.camera.verticalFieldOfView = fieldOfView;
        request.ground = true;
        request.samplesPerPixel = 0;
        for (const char* renderer : {"embree", "painter"}) {
            const QImage picture = Renderer(QString::fromLatin1(renderer))->Render(request, {});
            QCOMPARE(picture.isNull(), size.isEmpty());
            QVERIFY(picture.isNull() || picture.size() == size);
        }
    }

    void tellsWhatDoesNotFitInMemory_data() { AddRendererRows(); }

    void tellsWhatDoesNotFitInMemory()
    {
        QFETCH(QString, renderer);
        const std::vector<PosedMesh> meshes{UnitQuad()};
        try {
            Renderer(renderer)->Render(RequestOf(meshes, {2000000000, 2000000000}), {});
            QFAIL("Nothing was thrown");
        } catch (const OutOfMemoryException& e) {
            QCOMPARE(e.GetErrorText(), QStringLiteral("No room for a picture of 2000000000 by 2000000000 pixels\n"
                                                      "Attempted to allocate 16000000000000000000 bytes"));
        }
    }

    void tellsProgressOnTheCallersThread_data() { AddRendererRows(); }

    void tellsProgressOnTheCallersThread()
    {
        QFETCH(QString, renderer);
        const std::vector<PosedMesh> meshes{UnitQuad()};
        std::vector<int> told;
        const std::thread::id caller = std::this_thread::get_id();
        bool onCaller = true;
        Renderer(renderer)->Render(RequestOf(meshes, {40, 40}), [&](int percent) {
            told.push_back(percent);
            onCaller = onCaller && std::this_thread::get_id() == caller;
        });
        QVERIFY(onCaller);
        QVERIFY(!told.empty());
        QVERIFY(std::is_sorted(told.begin(), told.end()));
        QCOMPARE(told.back(), 100);
    }

    void progressMayThrow_data() { AddRendererRows(); }

    void progressMayThrow()
    {
        QFETCH(QString, renderer);
        const std::vector<PosedMesh> meshes{UnitQuad()};
        PictureRequest request = RequestOf(meshes, {40, 40});
        request.threads = 3;
        QVERIFY_EXCEPTION_THROWN(Renderer(renderer)->Render(request, [](int) { throw 1; }), int);
    }
};

QTEST_GUILESS_MAIN(RendererPictures)
#include "renderer_pictures_test.moc"
