#include "lumenta/foundation/Exceptions.h"
#include "reference/host/Studio.h"

#include <QtTest>
#include <QVector3D>

#include <cmath>
#include <limits>

using namespace Host;

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
        if (!(fromEye.z > 0.0f))
            return std::numeric_limits<double>::infinity();
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
    // Of boxes of many shapes and sizes, from all sides, for each up axis: first
    // the whole box, then a triangle between some of its corners, without a
    // vertex far off that none uses. The outermost point stands at the edge but
    // for the margin.
    void keepsAllInView()
    {
        const std::pair<QVector3D, QSize> cases[] = {{{1.0f, 1.0f, 1.0f}, {100, 100}},
                                                     {{0.1f, 7.0f, 0.1f}, {400, 100}},
                                                     {{900.0f, 0.0f, 300.0f}, {100, 300}},
                                                     {{1e-4f, 2e-4f, 3e-4f}, {64, 48}}};
        for (const auto& [half, size] : cases) {
            TBBox<float> box;
            std::vector<TVec3<float>> corners;
            std::vector<PosedMesh> meshes(1);
            meshes[0].vertices.resize(9, {});
            meshes[0].vertices[8].position = {1e6f, 1e6f, 1e6f};
            meshes[0].indices = {0, 3, 6};
            for (int i = 0; i < 8; ++i) {
                corners.push_back({3.0f + (i & 1 ? half.x() : -half.x()), -2.0f + (i & 2 ? half.y() : -half.y()),
                                   5.0f + (i & 4 ? half.z() : -half.z())});
                box.Extend(corners.back());
                meshes[0].vertices[static_cast<std::size_t>(i)].position = corners.back();
            }
            for (int i = 0; i < 36; ++i) {
                const TVec3<float> up = i % 3 == 0 ? kX : i % 3 == 1 ? kY : kZ;
                const int row = i / 9;
                const float azimuth = 60.0f * static_cast<float>(i / 3 % 3) - 35.0f;
                const float elevation = 60.0f * static_cast<float>(row) - 90.0f;
                Camera camera = FrameBox(box, up, azimuth, elevation, size);
                const double reach = ReachOf(corners, camera, size);
                const TVec3<float> back = Normalized(camera.eye - camera.target);
                camera.eye = camera.target + back * DistanceToSee(meshes, camera, size);
                const double closer = ReachOf({corners[0], corners[3], corners[6]}, camera, size);
                QVERIFY2(reach > 0.9 && reach < 0.95 && closer > 0.9 && closer < 0.95,
                         qPrintable(QStringLiteral("%1, %2").arg(reach).arg(closer)));
            }
        }
    }

    void azimuthGrowsAnticlockwiseFromAbove()
    {
        const std::tuple<TVec3<float>, float, TVec3<float>> cases[] = {
            {kY, 0.0f, kZ}, {kY, 90.0f, kX}, {kZ, 0.0f, -kY}, {kZ, 90.0f, kX}, {kX, 0.0f, kZ}};
        for (const auto& [up, azimuth, towardsEye] : cases) {
            const Camera camera = FrameBox({}, up, azimuth, 0.0f, {100, 100});
            QVERIFY(Length(Normalized(camera.eye - camera.target) - towardsEye) < 1e-5f);
        }
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
        const Camera camera = FrameBox({kX, kX}, kY, 10.0f, 10.0f, {100, 100});
        QCOMPARE(camera.eye, FrameBox({{0.5f, -0.5f, -0.5f}, {1.5f, 0.5f, 0.5f}}, kY, 10.0f, 10.0f, {100, 100}).eye);
    }
};

QTEST_GUILESS_MAIN(RendererFraming)
#include "renderer_framing_test.moc"
