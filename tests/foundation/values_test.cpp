#include "lumenta/foundation/BBox.h"
#include "lumenta/foundation/Color.h"
#include "lumenta/foundation/Conversions.h"
#include "lumenta/foundation/Matrix.h"
#include "lumenta/foundation/Matrix2.h"
#include "tests/foundation/Exact.h"

#include <clocale>

using Vec3 = TVec3<float>;
using Vec2 = TVec2<float>;
using Box = TBBox<float>;

namespace {

const Matrix kCounted{{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}};
const Matrix kPrimes{{2, -3, 5, 7, 11, 13, -17, 19, -23, 29, 31, 37, 41, 43, 47, -53}};

QString RectText(QRectF rect)
{
    return QRectFToQVariant(rect).toString();
}

} // namespace

class ValuesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // Everything here must hold where a decimal comma reigns.
        QLocale::setDefault(QLocale(QLocale::German));
        std::setlocale(LC_ALL, "de_DE.UTF-8"); // where the machine has it
        QCOMPARE(QStringLiteral("%L1").arg(0.5), QStringLiteral("0,5"));
    }

    void Matrices_data()
    {
        AnswerColumns();
        Matrix square = kCounted;
        Multiply(square, square, square);
        Row("a product over both factors", Floats(square),
            "90, 100, 110, 120, 202, 228, 254, 280, 314, 356, 398, 440, 426, 484, 542, 600");
        Matrix matrix{{-1, 1, 2, 2, 1, -2, 1, 3, -1, -1, 1, 2, -3, -2, -3, -3}};
        Inverse(matrix, matrix);
        Row("an inverse in place, in which every element counts", Rounded(matrix),
            "-1, -0.5, 1, -0.5, 6, 4.5, -9, 2.5, -11, -9, 17, -5, 8, 6.5, -12, 3.5");
        Vec3 point{2, 3, 5};
        Vec3 direction = point;
        TransformPoint(point, kPrimes);
        TransformDirection(direction, kPrimes);
        Row("a point and a direction", Floats(point) + " / " + Floats(direction), "-37, 221, 161 / -78, 178, 114");
        Matrix sevens{{7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7}};
        sevens.SetTranslation({1, 2, 3});
        sevens.SetRotation({10, 20, 30}); // from z to y, then from x to z, then from x to y
        Row("translation and rotation write twelve", Rounded(sevens), "0.8138, 0.46985, 0.34202, 7, "
            "-0.44097, 0.88256, -0.16318, 7, -0.37852, -0.01803, 0.92542, 7, 1, 2, 3, 7");
        sevens.SetRotation({0, 90, 0});
        Row("the degree is a float", Floats(sevens.m[0]), Floats(std::cos(90.0f * 0.017453292f)));
        Row("a direction, whatever the roll", Rounded(DirectionFromAngles({123, -30, 135})), "-0.61237, 0.61237, -0.5");
    }
    void Matrices() { CompareAnswer(); }

    void ToolkitMatricesMoveTheSamePoints()
    {
        const Matrix a{{1, 2, 3, 0, 4, 5, 7, 0, -2, 6, 1, 0, 10, 20, 30, 1}};
        Vec3 moved{2, 3, 5};
        TransformPoint(moved, a);
        QCOMPARE(QVector3DToTVec3(MatrixToQMatrix4x4(a).map(TVec3ToQVector3D({2, 3, 5}))), moved);
        QCOMPARE(MatrixToQMatrix4x4(a * kPrimes), MatrixToQMatrix4x4(kPrimes) * MatrixToQMatrix4x4(a));
        QCOMPARE(QMatrix4x4ToMatrix(MatrixToQMatrix4x4(kPrimes)), kPrimes);

        const Matrix2 texture(1, 2, 3, 4, 5, 6);
        QCOMPARE(Floats(texture), QStringLiteral("1, 2, 0, 3, 4, 0, 5, 6, 1"));
        QCOMPARE(Matrix2ToQTransform(texture).map(QPointF(10, 100)), QPointF(10 + 300 + 5, 20 + 400 + 6));
        QCOMPARE(QTransformToMatrix2(Matrix2ToQTransform(texture)), texture);
        QCOMPARE(QVector2DToTVec2(TVec2ToQVector2D({1, 2})), (Vec2{1, 2}));
    }

    void OneElementMakesTheDifference()
    {
        const Vec3 v{1, 2, 3};
        QVERIFY((v == Vec3{1, 2, 3}) && (v != Vec3{0, 2, 3}) && (v != Vec3{1, 0, 3}) && (v != Vec3{1, 2, 0}));
        QVERIFY(Box(v, v) == Box(v, v) && Box(v, v) != Box(v, {1, 2, 4}) && Box(v, v) != Box({0, 2, 3}, v));
        Matrix last = kCounted;
        last.m[15] = -1;
        QVERIFY(last != kCounted && kCounted == Matrix(kCounted));
        QVERIFY(Matrix2(1, 2, 3, 4, 5, 6) != Matrix2(1, 2, 3, 4, 5, 0));
        QVERIFY((Vec2{1, 2} != Vec2{0, 2}) && (Vec2{1, 2} != Vec2{1, 0}));
        const ColorF color{1, 2, 3, 4};
        QVERIFY(color == ColorF(color));
        for (float ColorF::*const component : {&ColorF::r, &ColorF::g, &ColorF::b, &ColorF::a}) {
            ColorF other = color;
            other.*component = 5;
            QVERIFY(other != color);
        }
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

        Box points;
        for (const Vec3& point : {Vec3{0, -0.0f, 1}, Vec3{-0.0f, 0, kNaN}, Vec3{kNaN, kNaN, 9}})
            points.Extend(point);
        Row("box: each axis for itself, no change by equals and by no numbers", Floats(points), "0, -0, 1, 0, -0, 9");
        Box unit({0, 0, 0}, {1, 1, 1});
        unit.Extend(Box());
        unit.Extend(Box({5, -5, 0}, {-5, 5, 0}));
        Row("box: minimum to minimum and maximum to maximum", Floats(unit), "0, -5, 0, 1, 5, 1");
        // Half the width of x would have another last bit.
        Row("box: centre and half extent", Floats(Box({0.1f, -4, 2}, {3, 8, 2}).Center()) + " / "
            + Floats(Box({0.1f, -4, 2}, {3, 8, 2}).HalfExtent()), "1.54999995, 2, 2 / 1.44999993, 6, 0");
        Row("box: empty or not", QString::number(Box().IsEmpty() + 2 * Box(a, a).IsEmpty() + 4 * Box(b, a).IsEmpty()
            + 8 * Box({0, 0, 1}, {0, 0, 0}).IsEmpty()), "13");

        Row("color: clamped, truncated, opaque", ColorToQColor({-0.5f, 0.5f, 2, 0}).name(QColor::HexArgb), "#ff007fff");
        Row("color: below one, not a number, infinite", ColorToQColor({0.999f, kNaN, kInfinity, 1}).name(), "#fe00ff");
        const float byte = 0.003921568859368563f;
        Row("color: from bytes", Floats(QColorToColorF({1, 3, 255, 0})), Floats(ColorF{byte, 3 * byte, 255 * byte, 1}));
        // For these values dividing first, or working in double, ends in other bits.
        for (const Vec2& v : {Vec2{3, 72}, Vec2{3, 150}, Vec2{0.3f, 150}})
            Row(qPrintable("lengths: " + Floats(v)), Floats(Vec2{pixelsToMM(v.x, v.y), mmToPixels(v.x, v.y)}),
                Floats(Vec2{v.x * 25.4f / v.y, v.x * v.y / 25.4f}));

        QString printed;
        QDebug(&printed) << Vec2{0.5f, -2} << Box(a, b) << ColorF{0.5f, 1, 0, 0.25f} << kCounted
                         << Matrix2(1, 2, 3, 4, 5, 6.5f);
        Row("printed for whoever debugs", printed.trimmed(), "TVec2(0.5, -2) TBBox(TVec3(1, 2, 3), TVec3(5, 7, 11)) "
            "ColorF(0.5, 1, 0, 0.25) Matrix(1, 2, 3, 4; 5, 6, 7, 8; 9, 10, 11, 12; 13, 14, 15, 16) "
            "Matrix2(1, 2; 3, 4; 5, 6.5)");
    }
    void VectorsBoxesAndColors() { CompareAnswer(); }

    void Conversions_data()
    {
        AnswerColumns();
        const auto flags = [](const char* name, const QVariantList& values, const char* expected) {
            QString found;
            for (const QVariant& value : values)
                found += QVariantToBool(value) ? QLatin1Char('1') : QLatin1Char('0');
            Row(name, found, expected);
        };
        flags("flags of every counting type", {true, 5, 4294967295u, -1LL, 1ULL, 0}, "111110");
        flags("only the low bits of long flags count", {1LL << 32, 1ULL << 40}, "00");
        flags("other numbers go by their text", {QVariant::fromValue(1L), QVariant::fromValue(short(1)), 1.0f}, "000");
        flags("flags as text", {"TrUe", "true ", "1", QVariant(), QVariant(QVariant::Bool)}, "10000");

        Row("rectangle: one decimal stays, more turn round", RectText({12.5, 3, 0.10203, 0.25}), "12.5 3 0.30201 0.52");
        Row("rectangle: the sixth decimal is lost, zeros go", RectText({1.123456, -2.000009, 1e15, 0.00001}),
            "1.54321 -2 1000000000000000 0.10000");
        Row("rectangle: what has no decimals stays", RectText({qInf(), 10, 100, -qInf()}), "inf 10 100 -inf");

        const auto read = [](const char* name, const QVariant& value, const char* expected = "-1 -2 -3 -4") {
            Row(name, RectText(QVariantToQRectF(value, QRectF(-1, -2, -3, -4))), expected);
        };
        read("four numbers in order, narrowed to float", "1.5 -2 3 16777217", "1.5 -2 3 16777216");
        read("an exponent", "1e3 0 10 10");
        read("an exponent in capitals", "1E3 0 10 10");
        read("five numbers", "1 2 3 4 5");
        read("a word as fourth", "1 2 3 x");
        read("decimal commas", "1,5 2 3 4");
        read("two spaces", "1  2 3 4");

        const auto duration = [](const char* name, unsigned long long ms, const char* expected) {
            Row(name, millisecondsToQTime(ms).toString("HH:mm:ss.zzz"), expected);
        };
        duration("just below a day", 86400000 - 1, "23:59:59.999");
        duration("every part of a duration", 3723004, "01:02:03.004");
        duration("a day is no time of day", 86400000, "");
        duration("hours that an int would wrap to one", ((1ULL << 32) + 1) * 3600000, "");
    }
    void Conversions() { CompareAnswer(); }
};

QTEST_APPLESS_MAIN(ValuesTest)
#include "values_test.moc"
