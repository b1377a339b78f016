#include "lumenta/foundation/Exceptions.h"
#include "reference/host/Studio.h"

#include <QtTest>

#include <cmath>
#include <limits>

using namespace Host;

Q_DECLARE_METATYPE(TVec3<float>)

namespace {

constexpr TVec3<float> kX{1.0f, 0.0f, 0.0f};
constexpr TVec3<float> kY{0.0f, 1.0f, 0.0f};
constexpr TVec3<float> kZ{0.0f, 0.0f, 1.0f};

/// How far out in the picture the outermost point is: 1 at the edge, infinity
/// where a point lies behind the camera.
double ReachOf(const std::vector<TVec3<float>>& points, const Camera& camera, QSize size)
{
    PictureRequest request;
    request.size = size;
    request.camera = camera;
    const Studio studio(request);
    double reach = 0.0;
    for (const TVec3<float>& point : points) {
        const TVec3<float> fromEye = studio.FromEye(studio.FromWorld(point));
        if (!(fromEye.z > 0.0f)) return std::numeric_limits<double>::infinity();
        const QPointF pixel = studio.ToPixel(fromEye);
        reach = std::max(
            {reach, std::fabs(pixel.x() / size.width() * 2.0 - 1.0), std::fabs(pixel.y() / size.height() * 2.0 - 1.0)});
    }
    return reach;
}

} // namespace

class RendererFraming : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keepsAllInView_data()
    {
        QTest::addColumn<TVec3<float>>("halfExtent");
        QTest::addColumn<QSize>("size");
        QTest::newRow("a cube, in a square") << TVec3<float>{1.0f, 1.0f, 1.0f} << QSize(100, 100);
        QTest::newRow("a pole, in a wide picture") << TVec3<float>{0.1f, 7.0f, 0.1f} << QSize(400, 100);
        QTest::newRow("a plate, in a tall picture") << TVec3<float>{900.0f, 0.0f, 300.0f} << QSize(100, 300);
        QTest::newRow("a grain") << TVec3<float>{1e-4f, 2e-4f, 3e-4f} << QSize(64, 48);
    }

    // From all sides, for each up axis: first the whole box, then a triangle
    // between some of its corners, without a vertex far off that none uses. The
    // outermost point stands at the edge but for the margin.
    void keepsAllInView()
    {
        QFETCH(TVec3<float>, halfExtent);
        QFETCH(QSize, size);
        const TVec3<float> centre{3.0f, -2.0f, 5.0f};
        const TBBox<float> box{centre - halfExtent, centre + halfExtent};
        std::vector<TVec3<float>> corners;
        for (int i = 0; i < 8; ++i)
            corners.push_back(
                {i & 1 ? box.max.x : box.min.x, i & 2 ? box.max.y : box.min.y, i & 4 ? box.max.z : box.min.z});
        const std::vector<TVec3<float>> triangle{corners[0], corners[3], corners[6]};
        std::vector<PosedMesh> meshes(1);
        for (const TVec3<float>& place : {triangle[0], triangle[1], triangle[2], TVec3<float>{1e6f, 1e6f, 1e6f}}) {
            meshes[0].vertices.emplace_back();
            meshes[0].vertices.back().position = place;
        }
        meshes[0].indices = {0, 1, 2};

        for (const TVec3<float>& up : {kY, kZ, kX}) {
            for (const float azimuth : {0.0f, 35.0f, 200.0f}) {
                for (const float elevation : {-90.0f, 0.0f, 20.0f, 90.0f}) {
                    Camera camera = FrameBox(box, up, azimuth, elevation, size);
                    const double reach = ReachOf(corners, camera, size);
                    const TVec3<float> back = Normalized(camera.eye - camera.target);
                    camera.eye = camera.target + back * DistanceToSee(meshes, camera, size);
                    const double closer = ReachOf(triangle, camera, size);
                    QVERIFY2(reach > 0.9 && reach < 0.95 && closer > 0.9 && closer < 0.95,
                             qPrintable(QStringLiteral("%1, %2").arg(reach).arg(closer)));
                }
            }
        }
    }

    void azimuthGrowsAnticlockwiseFromAbove()
    {
        const auto towardsEye = [](const TVec3<float>& up, float azimuth) {
            const Camera camera = FrameBox({}, up, azimuth, 0.0f, {100, 100});
            return Normalized(camera.eye - camera.target);
        };
        QVERIFY(Length(towardsEye(kY, 0.0f) - kZ) < 1e-5f);
        QVERIFY(Length(towardsEye(kY, 90.0f) - kX) < 1e-5f);
        QVERIFY(Length(towardsEye(kZ, 0.0f) + kY) < 1e-5f);
        QVERIFY(Length(towardsEye(kZ, 90.0f) - kX) < 1e-5f);
        QVERIFY(Length(towardsEye(kX, 0.0f) - kZ) < 1e-5f);
    }

    void refusesABoxTooLargeForAnyCamera()
    {
        const TVec3<float> corner{2e38f, 0.0f, 0.0f};
        try {
            FrameBox({-corner, corner}, kY, 0.0f, 0.0f, {100, 100});
            QFAIL("nothing was thrown");
        } catch (const Exception& exception) {
            QCOMPARE(exception.GetErrorText(),
                     QStringLiteral("a box 4e+38 across is too large for a camera to see all of it"));
        }
    }

    void pointSizedBoxIsFramedAsAUnitBox()
    {
        const TVec3<float> place{4.0f, 5.0f, 6.0f};
        const TVec3<float> half{0.5f, 0.5f, 0.5f};
        const Camera camera = FrameBox({place, place}, kY, 10.0f, 10.0f, {100, 100});
        QCOMPARE(camera.target, place);
        QCOMPARE(camera.eye, FrameBox({place - half, place + half}, kY, 10.0f, 10.0f, {100, 100}).eye);
    }
};

QTEST_GUILESS_MAIN(RendererFraming)
#include "renderer_framing_test.moc"
