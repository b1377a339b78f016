#include "benchmarks/SceneStandIns.h"
#include "lumenta/foundation/CameraMatrices.h"
#include "tests/foundation/Exact.h"

namespace {

QString Projection(float fov, float frameAspect, float aspect)
{
    Matrix m;
    m.m[4] = m.m[15] = 7; // has to be overwritten
    CalculateProjectionMatrix(m, fov, frameAspect, aspect, 1, 5);
    return Rounded(m);
}

/// A camera four before (1, 2, 3): where it stands, where it looks, and where it sees a point.
QString Stand(float heading, float pitch, TVec3<float> point)
{
    StandIn::Camera camera;
    camera.state = {{1, 2, 3}, 4, heading, pitch, 45, 1};
    CalculateCameraMatrix(camera.matrix, {1, 2, 3}, 4, heading, pitch);
    Matrix view;
    CalculateViewMatrix(view, camera.matrix);
    TransformPoint(point, view);
    const TVec3<float> position = GetCameraPosition(camera);
    return (position == camera.matrix.GetTranslation() ? "" : "not quite ") + Rounded(position) + " towards "
        + Rounded(GetCameraDirection(camera)) + " sees " + Rounded(point);
}

} // namespace

class CameraTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void Numbers_data()
    {
        AnswerColumns();
        const QString elements = QStringLiteral("%1, 0, 0, 0, 0, %2, 0, 0, 0, 0, 0.25, 1, 0, 0, -1.25, 0");
        Row("a wider frame: more is seen above and below", Projection(90, 2, 1), elements.arg("0.5", "0.5"));
        Row("a narrower frame: more is seen left and right", Projection(90, 1, 2), elements.arg("0.5", "1"));
        Row("half the field of view", Projection(45, 1, 1), elements.arg("2.41421", "2.41421"));
        Row("no angles: along x", Stand(0, 0, {2, 1, 5}), "-3, 2, 3 towards 1, 0, 0 sees 1, 2, 5");
        Row("heading 90: along y", Stand(90, 0, {2, 3, 5}), "1, -2, 3 towards 0, 1, 0 sees 1, 2, 5");
        Row("pitch 90: straight down", Stand(0, 90, {3, 1, 2}), "1, 2, 7 towards 0, 0, -1 sees 1, 2, 5");
        Row("both", Stand(30, 30, {3.1160254f, 2.0669873f, 4.2320508f}),
            "-2, 0.26795, 5 towards 0.75, 0.43301, -0.5 sees 1, 2, 5");
    }

    void Numbers() { CompareAnswer(); }

    void ASingularCameraLeavesTheViewAsItWas()
    {
        Matrix camera, view, before;
        camera.m[5] = 0;
        view.m[3] = before.m[3] = 7;
        CalculateViewMatrix(view, camera);
        QCOMPARE(view, before);
    }
};

QTEST_APPLESS_MAIN(CameraTest)
#include "camera_test.moc"
