#include "lumenta/foundation/BBox.h"
#include "lumenta/foundation/Color.h"
#include "lumenta/foundation/Conversions.h"
#include "lumenta/foundation/Matrix.h"
#include "lumenta/foundation/Matrix2.h"
#include "tests/foundation/Exact.h"

#include <clocale>
#include <limits>

using Vec3 = TVec3<float>;
using Vec2 = TVec2<float>;
using Box = TBBox<float>;

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

const Matrix kCounted{{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}};
const Matrix kPrimes{{2, -3, 5, 7, 11, 13, -17, 19, -23, 29, 31, 37, 41, 43, 47, -53}};

/// a·b, also where the result takes the place of a factor.
QString Product(const Matrix& a, const Matrix& b)
{
    Matrix overLeft = a;
    Matrix overRight = b;
    Multiply(overLeft, overLeft, b);
    Multiply(overRight, a, overRight);
    const QString product = Floats(a * b);
    return Floats(overLeft) == product && Floats(overRight) == product ? product : QStringLiteral("aliasing shows");
}

/// The inverse, also in place; "none" where everything is left as it was.
QString InverseText(const Matrix& source)
{
    Matrix destination = kPrimes;
    Matrix inPlace = source;
    const bool exists = Inverse(destination, source);
    if (Inverse(inPlace, inPlace) != exists || inPlace != (exists ? destination : source))
        return QStringLiteral("aliasing shows");
    return exists ? Rounded(destination) : destination == kPrimes ? QStringLiteral("none") : Floats(destination);
}

/// `p` turned about one axis, from the axis `from` towards the axis `to`.
void Turn(double (&p)[3], int from, int to, double degrees)
{
    const double angle = degrees * std::acos(-1.0) / 180.0;
    const double u = p[from];
    const double v = p[to];
    p[from] = u * std::cos(angle) - v * std::sin(angle);
    p[to] = u * std::sin(angle) + v * std::cos(angle);
}

QString BoxOf(const std::vector<Vec3>& points)
{
    Box byPoints;
    Box byBoxes;
    for (const Vec3& point : points) {
        byPoints.Extend(point);
        byBoxes.Extend(Box(point, point));
        byBoxes.Extend(Box());
    }
    return Floats(byBoxes) == Floats(byPoints) ? Floats(byPoints) : QStringLiteral("boxes and points differ");
}

template <typename Value>
QString Printed(const Value& value)
{
    QString text;
    QDebug(&text) << value;
    return text.trimmed();
}

void Row(const char* name, const QString& found, const QString& expected)
{
    QTest::newRow(name) << found << expected;
}

} // namespace

class ValuesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // Everything here must hold where a decimal comma reigns.
        QLocale::setDefault(QLocale(QLocale::German));
        if (!std::setlocale(LC_ALL, "de_DE.UTF-8"))
            qInfo("This machine has no de_DE.UTF-8: the comma is Qt's alone.");
        QCOMPARE(QStringLiteral("%L1").arg(0.5), QStringLiteral("0,5"));
    }

    void Matrices_data()
    {
        AnswerColumns();
        Row("product: row times column", Product(kCounted, kPrimes),
            "119, 282, 252, -56, 243, 610, 516, -16, 367, 938, 780, 24, 491, 1266, 1044, 64");
        Matrix square = kCounted;
        Multiply(square, square, square);
        Row("product: over both factors", Floats(square),
            "90, 100, 110, 120, 202, 228, 254, 280, 314, 356, 398, 440, 426, 484, 542, 600");
        Row("product: identity on either side", Product(Matrix(), kPrimes), Product(kPrimes, Matrix()));
        // 1e8 swallows the 1 beside it and is gone before the last 1 comes: other orders give 0 or 2.
        Row("product: summed from the front", Floats((Matrix{{1e8f, 1, -1e8f, 1}}
            * Matrix{{1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0}}).m[0]), "1");
        const float x = 1.0f + 1.0f / 4096; // its square needs one bit more than a float has
        Row("product: each term is rounded", Floats((Matrix{{x * x, x}} * Matrix{{-1, 0, 0, 0, x}}).m[0]), "0");

        Row("inverse: every element counts", InverseText({{-1, 1, 2, 2, 1, -2, 1, 3, -1, -1, 1, 2, -3, -2, -3, -3}}),
            "-1, -0.5, 1, -0.5, 6, 4.5, -9, 2.5, -11, -9, 17, -5, 8, 6.5, -12, 3.5");
        Row("inverse: projective", InverseText({{2, 0, 0, 0, 0, 4, 0, 0, 0, 0, 1, 1, 0, 0, -2, 0}}),
            "0.5, 0, 0, 0, 0, 0.25, 0, 0, 0, 0, 0, -0.5, 0, 0, 1, 0.5");
        const float s = 1.0f / (1 << 30);
        Row("inverse: tiny is not singular", InverseText({{s, 0, 0, 0, 0, s, 0, 0, 0, 0, s, 0, 0, 0, 0, 1}}),
            Rounded(Matrix{{1 / s, 0, 0, 0, 0, 1 / s, 0, 0, 0, 0, 1 / s, 0, 0, 0, 0, 1}}));
        Row("inverse: two rows alike", InverseText({{1, 2, 3, 4, 1, 2, 3, 4, 0, 0, 1, 0, 0, 0, 0, 1}}), "none");
        Row("inverse: flat", InverseText({{1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1}}), "none");

        Vec3 v{2, 3, 5};
        TransformPoint(v, kPrimes);
        Row("a point, the fourth column apart", Floats(v), "-37, 221, 161");
        v = {2, 3, 5};
        TransformDirection(v, kPrimes);
        Row("a direction, without the translation", Floats(v), "-78, 178, 114");
        Matrix sevens{{7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7}};
        sevens.SetTranslation({1, 2, 3});
        Row("setting a translation writes three", Floats(sevens), "7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 1, 2, 3, 7");
        sevens.SetRotation({0, 90, 0});
        Row("setting a rotation writes nine", Rounded(sevens), "0, 0, 1, 7, 0, 1, 0, 7, -1, 0, 0, 7, 1, 2, 3, 7");
        Row("the degree is a float", Floats(sevens.m[0]), Floats(std::cos(90.0f * 0.017453292f)));

        Row("direction: level, along y, whatever the roll", Rounded(DirectionFromAngles({123, 0, 90})), "0, 1, 0");
        Row("direction: up", Rounded(DirectionFromAngles({0, 90, 77})), "0, 0, 1");
        Row("direction: behind and down", Rounded(DirectionFromAngles({0, -30, 180})), "-0.86603, 0, -0.5");
        Row("direction: all three", Rounded(DirectionFromAngles({0, 45, 45})), "0.5, 0.5, 0.70711");
    }
    void Matrices() { CompareAnswer(); }

    void RotationsFollowOneAnother()
    {
        for (const Vec3& degrees : {Vec3{30, 0, 0}, Vec3{0, 40, 0}, Vec3{10, 20, 30}, Vec3{-200, 100, 320}}) {
            Matrix rotation;
            rotation.SetRotation(degrees);
            for (int axis = 0; axis < 3; ++axis) {
                double p[3] = {axis == 0 ? 1.0 : 0.0, axis == 1 ? 1.0 : 0.0, axis == 2 ? 1.0 : 0.0};
                Turn(p, 2, 1, double(degrees.x)); // from z towards y
                Turn(p, 0, 2, double(degrees.y)); // from x towards z
                Turn(p, 0, 1, double(degrees.z)); // from x towards y
                QCOMPARE(Rounded(Vec3{rotation(axis, 0), rotation(axis, 1), rotation(axis, 2)}),
                         Rounded(Vec3{float(p[0]), float(p[1]), float(p[2])}));
            }
        }
    }

    void ToolkitMatricesMoveTheSamePoints()
    {
        const Matrix a{{1, 2, 3, 0, 4, 5, 7, 0, -2, 6, 1, 0, 10, 20, 30, 1}};
        const Matrix b{{0, 1, 0, 0, -3, 0, 0, 0, 0, 0, 2, 0, 1, 1, 1, 1}};
        Vec3 moved{2, 3, 5};
        TransformPoint(moved, a);
        QCOMPARE(QVector3DToTVec3(MatrixToQMatrix4x4(a).map(TVec3ToQVector3D({2, 3, 5}))), moved);
        QCOMPARE(MatrixToQMatrix4x4(a * b), MatrixToQMatrix4x4(b) * MatrixToQMatrix4x4(a));
        QCOMPARE(QMatrix4x4ToMatrix(MatrixToQMatrix4x4(kPrimes)), kPrimes);

        const Matrix2 texture(1, 2, 3, 4, 5, 6);
        QCOMPARE(Floats(texture), QStringLiteral("1, 2, 0, 3, 4, 0, 5, 6, 1"));
        QCOMPARE(Matrix2ToQTransform(texture).map(QPointF(10, 100)), QPointF(10 + 300 + 5, 20 + 400 + 6));
        QCOMPARE(QTransformToMatrix2(Matrix2ToQTransform(texture)), texture);
        QCOMPARE(QVector2DToTVec2(TVec2ToQVector2D({1, 2})), (Vec2{1, 2}));
    }

    void Equality()
    {
        for (std::size_t i = 0; i < 16; ++i) {
            Matrix other = kCounted;
            other.m[i] = -1;
            QVERIFY(other != kCounted && kCounted == Matrix(kCounted));
        }
        const Vec3 v{1, 2, 3};
        QVERIFY((v == Vec3{1, 2, 3}) && (v != Vec3{0, 2, 3}) && (v != Vec3{1, 0, 3}) && (v != Vec3{1, 2, 0}));
        QVERIFY(Box(v, v) == Box(v, v) && Box(v, v) != Box(v, {1, 2, 4}) && Box(v, v) != Box({0, 2, 3}, v));
    }

    void VectorsBoxesAndColors_data()
    {
        AnswerColumns();
        const Vec3 a{1, 2, 3};
        const Vec3 b{5, 7, 11};
        Row("sum, difference, product", Floats((a + b) * 2.0f - -a), "13, 20, 31");
        Row("the same in two dimensions", Floats((Vec2{1, 2} + Vec2{5, 7}) * 2.0f - -Vec2{1, 2}), "13, 20");
        Row("inner and outer product", Floats(Dot(a, b)) + " / " + Floats(Cross(a, b)), "52 / 1, 4, -3");
        Row("a unit vector", Rounded(Normalized({2, -3, 6})), "0.28571, -0.42857, 0.85714");
        Row("no length: as it was", Floats(Normalized({0, -0.0f, 0})), "0, -0, 0");
        Row("no number as length: divided by", Floats(Normalized({kNaN, 1, 0})), "nan, nan, nan");

        const QString empty = Floats(Vec3{3.4028235e38f, 3.4028235e38f, 3.4028235e38f}) + ", "
            + Floats(Vec3{-3.4028235e38f, -3.4028235e38f, -3.4028235e38f});
        Row("box: nothing", BoxOf({}), empty);
        Row("box: one point", BoxOf({a}), "1, 2, 3, 1, 2, 3");
        Row("box: each axis for itself", BoxOf({{1, -2, 3}, {-1, 2, 3}, {0, 0, 9}}), "-1, -2, 3, 1, 2, 9");
        Row("box: not a number changes nothing", BoxOf({{kNaN, kNaN, kNaN}}), empty);
        Row("box: not a number on one axis", BoxOf({a, {kNaN, 5, kNaN}}), "1, 2, 3, 1, 5, 3");
        Row("box: equal is not beyond", BoxOf({{0, -0.0f, 0}, {-0.0f, 0, -0.0f}}), "0, -0, 0, 0, -0, 0");
        Box unit({0, 0, 0}, {1, 1, 1});
        unit.Extend(Box({5, -5, 0}, {-5, 5, 0}));
        Row("box: half empty, minimum to minimum and maximum to maximum", Floats(unit), "0, -5, 0, 1, 5, 1");
        // Half the width of x would have another last bit.
        Row("box: centre and half extent", Floats(Box({0.1f, -4, 2}, {3, 8, 2}).Center()) + " / "
            + Floats(Box({0.1f, -4, 2}, {3, 8, 2}).HalfExtent()), "1.54999995, 2, 2 / 1.44999993, 6, 0");
        Row("box: empty or not", QString::number(Box().IsEmpty() + 2 * Box(a, a).IsEmpty() + 4 * Box(b, a).IsEmpty()
            + 8 * Box({0, 0, 1}, {0, 0, 0}).IsEmpty()), "13");

        Row("color: clamped, truncated, opaque", ColorToQColor({-0.5f, 0.5f, 2, 0}).name(QColor::HexArgb), "#ff007fff");
        Row("color: just below one", ColorToQColor({0.999f, 1, 0.9999999f, 1}).name(), "#fefffe");
        Row("color: not a number, not finite", ColorToQColor({kNaN, kInfinity, -kInfinity, kNaN}).name(), "#00ff00");
        const float byte = 0.003921568859368563f;
        Row("color: from bytes", Floats(QColorToColorF({1, 3, 255, 0})), Floats(ColorF{byte, 3 * byte, 255 * byte, 1}));
        Row("color: from another model", Floats(QColorToColorF(QColor::fromHsv(120, 255, 100))),
            Floats(ColorF{0, 100 * byte, 0, 1}));
        // For these values dividing first, or working in double, ends in other bits.
        for (const Vec2& v : {Vec2{3, 72}, Vec2{3, 150}, Vec2{0.3f, 150}})
            Row(qPrintable("lengths: " + Floats(v)), Floats(Vec2{pixelsToMM(v.x, v.y), mmToPixels(v.x, v.y)}),
                Floats(Vec2{v.x * 25.4f / v.y, v.x * v.y / 25.4f}));
    }
    void VectorsBoxesAndColors() { CompareAnswer(); }

    void VariantToBool_data()
    {
        AnswerColumns();
        const auto row = [](const char* name, const QVariant& value, bool is) {
            Row(name, QString::number(QVariantToBool(value)), QString::number(is));
        };
        row("bool true", true, true);
        row("int 5", 5, true);
        row("int 0", 0, false);
        row("uint beyond int", 4294967295u, true);
        row("long long -1", -1LL, true);
        row("long long without low bits", 1LL << 32, false);
        row("unsigned long long 1", 1ULL, true);
        row("unsigned long long without low bits", 1ULL << 40, false);
        row("a long goes by its text", QVariant::fromValue<long>(1), false);
        row("a short goes by its text", QVariant::fromValue<short>(1), false);
        row("a float goes by its text", 1.0f, false);
        row("text TrUe", QStringLiteral("TrUe"), true);
        row("text true with a space", QStringLiteral("true "), false);
        row("nothing", QVariant(), false);
        row("a null bool", QVariant(QVariant::Bool), false);
    }
    void VariantToBool() { CompareAnswer(); }

    void RectToText_data()
    {
        AnswerColumns();
        const auto row = [](const char* name, QRectF rect, const char* expected) {
            Row(name, QRectFToQVariant(rect).toString(), expected);
        };
        row("one decimal survives", {12.5, 3, 0.1, 100}, "12.5 3 0.1 100");
        row("two decimals change places", {0, 0, 0.25, 100}, "0 0 0.52 100");
        row("the sixth is lost, five turn round", {1.123456, -2.000009, 10.1, 0.50005}, "1.54321 -2 10.1 0.50005");
        row("zeros between digits stay", {0.10203, 1.0203, 0.00001, 0}, "0.30201 1.3020 0.10000 0");
        row("large, without exponent or grouping", {1e15, -123456789, 1, 2000}, "1000000000000000 -123456789 1 2000");
    }
    void RectToText() { CompareAnswer(); }

    void TextToRect_data()
    {
        AnswerColumns();
        const auto row = [](const char* name, const QVariant& value, const char* expected = "-1 -2 -3 -4") {
            QRectF rect = QVariantToQRectF(value, QRectF(-1, -2, -3, -4));
            Row(name, QRectFToQVariant(rect).toString(), expected);
        };
        row("four numbers in order", "1.5 -2 3 4.5", "1.5 -2 3 4.5");
        row("narrowed to float", "16777217 0 0 0", "16777216 0 0 0");
        row("bytes read as text", QByteArray("1 2 3 4"), "1 2 3 4");
        row("exponent", "1e3 0 10 10");
        row("exponent in capitals", "1E3 0 10 10");
        row("three numbers", "1 2 3");
        row("a word as fourth", "1 2 3 x");
        row("decimal commas", "1,5 2 3 4");
        row("two spaces", "1  2 3 4");
        row("too large for a float", "1 2 3 1000000000000000000000000000000000000000");
        row("empty", "");
    }
    void TextToRect() { CompareAnswer(); }

    void Durations_data()
    {
        AnswerColumns();
        const auto row = [](const char* name, unsigned long long ms, const char* expected) {
            Row(name, millisecondsToQTime(ms).toString("HH:mm:ss.zzz"), expected);
        };
        row("every part", 3723004, "01:02:03.004");
        row("just below a day", 86400000 - 1, "23:59:59.999");
        row("a day is no time of day", 86400000, "");
        row("hours that an int would wrap to one", ((1ULL << 32) + 1) * 3600000, "");
        row("the longest", ~0ULL, "");
    }
    void Durations() { CompareAnswer(); }

    void DebugTexts_data()
    {
        AnswerColumns();
        Row("two components", Printed(Vec2{0.5f, -2}), "TVec2(0.5, -2)");
        Row("box", Printed(Box({1, 2, 3}, {4, 5, 6.5f})), "TBBox(TVec3(1, 2, 3), TVec3(4, 5, 6.5))");
        Row("color", Printed(ColorF{0.5f, 1, 0, 0.25f}), "ColorF(0.5, 1, 0, 0.25)");
        Row("matrix", Printed(kCounted), "Matrix(1, 2, 3, 4; 5, 6, 7, 8; 9, 10, 11, 12; 13, 14, 15, 16)");
        Row("texture matrix", Printed(Matrix2(1, 2, 3, 4, 5, 6.5f)), "Matrix2(1, 2; 3, 4; 5, 6.5)");
    }
    void DebugTexts() { CompareAnswer(); }
};

QTEST_APPLESS_MAIN(ValuesTest)
#include "values_test.moc"
