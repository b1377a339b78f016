#include "reference/host/Studio.h"

#include <QtTest>

using namespace Host;

Q_DECLARE_METATYPE(TVec3<float>)

class RendererFraming : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keepsTheBoxInView_data()
    {
        QTest::addColumn<TVec3<float>>("halfExtent");
        QTest::addColumn<QSize>("size");
        QTest::newRow("a cube, in a square") << TVec3<float>{1.0f, 1.0f, 1.0f} << QSize(100, 100);
        QTest::newRow("a pole, in a wide picture") << TVec3<float>{0.1f, 7.0f, 0.1f} << QSize(400, 100);
        QTest::newRow("a plate, in a tall picture") << TVec3<float>{900.0f, 0.0f, 300.0f} << QSize(100, 300);
        QTest::newRow("a grain") << TVec3<float>{1e-4f, 2e-4f, 3e-4f} << QSize(64, 48);
    }

    // From all sides, for each up axis: every corner is inside, and the box
    // fills a good part of the picture.
    void keepsTheBoxInView()
    {
        QFETCH(TVec3<float>, halfExtent);
        QFETCH(QSize, size);
        const TVec3<float> centre{3.0f, -2.0f, 5.0f};
        const TBBox<float> box{centre - halfExtent, centre + halfExtent};
        for (const TVec3<float>& up : {TVec3<float>{0, 1, 0}, TVec3<float>{0, 0, 1}, TVec3<float>{1, 0, 0}}) {
            for (const float azimuth : {0.0f, 35.0f, 200.0f}) {
                for (const float elevation : {-90.0f, 0.0f, 20.0f, 90.0f}) {
                    PictureRequest request;
                    request.size = size;
                    request.camera = FrameBox(box, up, azimuth, elevation, size);
                    const Studio studio(request);
                    double reach = 0.0; // 1 at the edge of the picture
                    for (int corner = 0; corner < 8; ++corner) {
                        const TVec3<float> place{corner & 1 ? box.max.x : box.min.x,
                                                 corner & 2 ? box.max.y : box.min.y,
                                                 corner & 4 ? box.max.z : box.min.z};
                        const TVec3<float> fromEye = studio.FromEye(studio.FromWorld(place));
                        QVERIFY(fromEye.z > 0.0f);
                        const QPointF pixel = studio.ToPixel(fromEye);
                        reach = std::max({reach, std::fabs(pixel.x() / size.width() * 2.0 - 1.0),
                                          std::fabs(pixel.y() / size.height() * 2.0 - 1.0)});
                    }
                    QVERIFY2(reach <= 1.0 && reach > 0.8, qPrintable(QString::number(reach)));
                }
            }
        }
    }

    void azimuthGrowsAnticlockwiseFromAbove_data()
    {
        QTest::addColumn<TVec3<float>>("up");
        QTest::addColumn<float>("azimuth");
        QTest::addColumn<TVec3<float>>("towardsEye");
        QTest::newRow("y up, front") << TVec3<float>{0, 1, 0} << 0.0f << TVec3<float>{0, 0, 1};
        QTest::newRow("y up, a quarter on") << TVec3<float>{0, 1, 0} << 90.0f << TVec3<float>{1, 0, 0};
        QTest::newRow("z up, front") << TVec3<float>{0, 0, 1} << 0.0f << TVec3<float>{0, -1, 0};
        QTest::newRow("z up, a quarter on") << TVec3<float>{0, 0, 1} << 90.0f << TVec3<float>{1, 0, 0};
        QTest::newRow("x up, front") << TVec3<float>{1, 0, 0} << 0.0f << TVec3<float>{0, 0, 1};
    }

    void azimuthGrowsAnticlockwiseFromAbove()
    {
        QFETCH(TVec3<float>, up);
        QFETCH(float, azimuth);
        QFETCH(TVec3<float>, towardsEye);
        const TBBox<float> empty;
        const Camera camera = FrameBox(empty, up, azimuth, 0.0f, {100, 100});
        const TVec3<float> actual = Normalized(camera.eye - camera.target);
        QVERIFY(Length(actual - towardsEye) < 1e-5f);
    }

    void pointSizedBoxIsFramedAsAUnitBox()
    {
        const TVec3<float> place{4.0f, 5.0f, 6.0f};
        const Camera camera = FrameBox({place, place}, {0.0f, 1.0f, 0.0f}, 10.0f, 10.0f, {100, 100});
        const TVec3<float> half{0.5f, 0.5f, 0.5f};
        const Camera expected = FrameBox({place - half, place + half}, {0.0f, 1.0f, 0.0f}, 10.0f, 10.0f, {100, 100});
        QCOMPARE(camera.target, place);
        QCOMPARE(camera.eye, expected.eye);
    }
};

QTEST_GUILESS_MAIN(RendererFraming)
#include "renderer_framing_test.moc"
