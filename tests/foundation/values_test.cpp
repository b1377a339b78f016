#include "lumenta/foundation/BBox.h"
#include "lumenta/foundation/Color.h"
#include "lumenta/foundation/Conversions.h"
#include "lumenta/foundation/Matrix.h"
#include "lumenta/foundation/Matrix2.h"
#include "tests/foundation/Exact.h"

#include <QLocale>
#include <QtTest>

#include <clocale>
#include <cmath>
#include <limits>
#include <utility>

using Vec3 = TVec3<float>;
using Box = TBBox<float>;

Q_DECLARE_METATYPE(Matrix)
Q_DECLARE_METATYPE(Vec3)
Q_DECLARE_METATYPE(ColorF)
Q_DECLARE_METATYPE(QVector<Vec3>)

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

const Matrix kCounted{{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}};
const Matrix kPrimes{{2, -3, 5, 7, 11, 13, -17, 19, -23, 29, 31, 37, 41, 43, 47, -53}};

/// Determinant -2, and no element of it or of its inverse is 0.
const Matrix kInvertible{{-1, 1, 2, 2, 1, -2, 1, 3, -1, -1, 1, 2, -3, -2, -3, -3}};

/// `p` turned about the axis from `from` towards `to` (0, 1, 2 for x, y, z).
void Turn(double (&p)[3], int from, int to, double degrees)
{
    const double angle = degrees * std::acos(-1.0) / 180.0;
    const double u = p[from];
    const double v = p[to];
    p[from] = u * std::cos(angle) - v * std::sin(angle);
    p[to] = u * std::sin(angle) + v * std::cos(angle);
}

template <typename Value>
QString Printed(const Value& value)
{
    QString text;
    QDebug(&text) << value;
    return text.trimmed();
}

} // namespace

class ValuesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // Everything here must hold where a decimal comma reigns.
        QLocale::setDefault(QLocale(QLocale::German));
        QCOMPARE(QStringLiteral("%L1").arg(0.5), QStringLiteral("0,5"));
        if (!std::setlocale(LC_ALL, "de_DE.UTF-8"))
            qInfo("This machine has no de_DE.UTF-8: the comma is Qt's alone.");
    }

    void Product_data()
    {
        QTest::addColumn<Matrix>("a");
        QTest::addColumn<Matrix>("b");
        QTest::addColumn<QString>("expected");
        QTest::newRow("row times column, the left factor's row") << kCounted << kPrimes
            << "119, 282, 252, -56, 243, 610, 516, -16, 367, 938, 780, 24, 491, 1266, 1044, 64";
        QTest::newRow("a matrix with itself") << kCounted << kCounted
            << "90, 100, 110, 120, 202, 228, 254, 280, 314, 356, 398, 440, 426, 484, 542, 600";
        QTest::newRow("identity on the left") << Matrix() << kPrimes << Floats(kPrimes);
        QTest::newRow("identity on the right") << kPrimes << Matrix() << Floats(kPrimes);
        // 1e8 swallows the 1 beside it and is gone before the last 1 comes: any other order gives 0 or 2.
        QTest::newRow("summed from the front")
            << Matrix{{1e8f, 1, -1e8f, 1}} << Matrix{{1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0}}
            << "1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0";
        const float x = 1.0f + 1.0f / 4096; // its square needs one bit more than a float has
        QTest::newRow("each product rounded before it is added")
            << Matrix{{x * x, x}} << Matrix{{-1, 0, 0, 0, x, 0, 0, 0}}
            << "0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0";
    }

    void Product()
    {
        QFETCH(Matrix, a);
        QFETCH(Matrix, b);
        QFETCH(QString, expected);
        QCOMPARE(Floats(a * b), expected);

        Matrix overLeft = a;
        Multiply(overLeft, overLeft, b);
        QCOMPARE(Floats(overLeft), expected);

        Matrix overRight = b;
        Multiply(overRight, a, overRight);
        QCOMPARE(Floats(overRight), expected);

        if (a == b) {
            Multiply(a, a, a);
            QCOMPARE(Floats(a), expected);
        }
    }

    void InverseOf_data()
    {
        QTest::addColumn<Matrix>("source");
        QTest::addColumn<Matrix>("expected");
        QTest::addColumn<bool>("exists");
        const float tiny = 1.0f / (1 << 30);
        QTest::newRow("every element counts") << kInvertible
            << Matrix{{-1, -0.5f, 1, -0.5f, 6, 4.5f, -9, 2.5f, -11, -9, 17, -5, 8, 6.5f, -12, 3.5f}} << true;
        QTest::newRow("projective") << Matrix{{2, 0, 0, 0, 0, 4, 0, 0, 0, 0, 1, 1, 0, 0, -2, 0}}
            << Matrix{{0.5f, 0, 0, 0, 0, 0.25f, 0, 0, 0, 0, 0, -0.5f, 0, 0, 1, 0.5f}} << true;
        QTest::newRow("tiny is not singular") << Matrix{{tiny, 0, 0, 0, 0, tiny, 0, 0, 0, 0, tiny, 0, 0, 0, 0, 1}}
            << Matrix{{1 / tiny, 0, 0, 0, 0, 1 / tiny, 0, 0, 0, 0, 1 / tiny, 0, 0, 0, 0, 1}} << true;
        QTest::newRow("two rows alike") << Matrix{{1, 2, 3, 4, 1, 2, 3, 4, 0, 0, 1, 0, 0, 0, 0, 1}} << kPrimes << false;
        QTest::newRow("a scale of zero") << Matrix{{1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1}} << kPrimes << false;
    }

    void InverseOf()
    {
        QFETCH(Matrix, source);
        QFETCH(Matrix, expected);
        QFETCH(bool, exists);
        Matrix destination = kPrimes; // what a singular one leaves
        QCOMPARE(Inverse(destination, source), exists);
        QVERIFY2(destination == expected, qPrintable(Floats(destination)));

        Matrix inPlace = source;
        QCOMPARE(Inverse(inPlace, inPlace), exists);
        QVERIFY2(inPlace == (exists ? expected : source), qPrintable(Floats(inPlace)));
    }

    void PointsAndDirections()
    {
        Vec3 point{2, 3, 5};
        TransformPoint(point, kPrimes); // the fourth column plays no part
        QCOMPARE(Floats(point), QStringLiteral("-37, 221, 161"));
        Vec3 direction{2, 3, 5};
        TransformDirection(direction, kPrimes);
        QCOMPARE(Floats(direction), QStringLiteral("-78, 178, 114"));
    }

    void SettersWriteOnlyTheirElements()
    {
        Matrix sevens;
        std::fill(std::begin(sevens.m), std::end(sevens.m), 7.0f);
        Matrix moved = sevens;
        moved.SetTranslation({1, 2, 3});
        QCOMPARE(Floats(moved), QStringLiteral("7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 1, 2, 3, 7"));
        QCOMPARE(moved.GetTranslation(), (Vec3{1, 2, 3}));

        sevens.SetRotation({0, 0, 0});
        for (const int untouched : {3, 7, 11, 12, 13, 14, 15})
            QCOMPARE(sevens.m[untouched], 7.0f);

        moved.SetIdentity();
        QCOMPARE(Floats(moved), QStringLiteral("1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1"));
    }

    void Rotation_data()
    {
        QTest::addColumn<Vec3>("degrees");
        QTest::newRow("about x alone") << Vec3{30, 0, 0};
        QTest::newRow("about y alone") << Vec3{0, 40, 0};
        QTest::newRow("about z alone") << Vec3{0, 0, 50};
        QTest::newRow("all three, small") << Vec3{10, 20, 30};
        QTest::newRow("all three, beyond a half turn") << Vec3{-200, 100, 320};
    }

    void Rotation()
    {
        QFETCH(Vec3, degrees);
        Matrix rotation;
        rotation.SetRotation(degrees);
        for (int axis = 0; axis < 3; ++axis) {
            double p[3] = {axis == 0 ? 1.0 : 0.0, axis == 1 ? 1.0 : 0.0, axis == 2 ? 1.0 : 0.0};
            Turn(p, 2, 1, double(degrees.x)); // from z towards y
            Turn(p, 0, 2, double(degrees.y)); // from x towards z
            Turn(p, 0, 1, double(degrees.z)); // from x towards y
            const Vec3 row{rotation(axis, 0), rotation(axis, 1), rotation(axis, 2)};
            QVERIFY2(Distance(row, Vec3{float(p[0]), float(p[1]), float(p[2])}) < 2e-6f, qPrintable(Floats(rotation)));
        }
        QCOMPARE(Floats(rotation.m[2]), Floats(std::sin(degrees.y * 0.017453292f)));
    }

    void Direction_data()
    {
        QTest::addColumn<Vec3>("degrees");
        QTest::addColumn<Vec3>("expected");
        const float half = std::sqrt(0.5f);
        QTest::newRow("level, along x") << Vec3{0, 0, 0} << Vec3{1, 0, 0};
        QTest::newRow("heading 90 looks along y") << Vec3{0, 0, 90} << Vec3{0, 1, 0};
        QTest::newRow("pitch 90 looks up") << Vec3{0, 90, 77} << Vec3{0, 0, 1};
        QTest::newRow("roll is ignored") << Vec3{123, -45, 180} << Vec3{-half, 0, -half};
        QTest::newRow("heading and pitch together") << Vec3{0, 45, 45} << Vec3{0.5f, 0.5f, half};
    }

    void Direction()
    {
        QFETCH(Vec3, degrees);
        QFETCH(Vec3, expected);
        QVERIFY2(Distance(DirectionFromAngles(degrees), expected) < 1e-6f, qPrintable(Floats(DirectionFromAngles(degrees))));
    }

    void ToolkitMatricesMoveTheSamePoints()
    {
        const Matrix a{{1, 2, 3, 0, 4, 5, 7, 0, -2, 6, 1, 0, 10, 20, 30, 1}};
        const Matrix b{{0, 1, 0, 0, -3, 0, 0, 0, 0, 0, 2, 0, 1, 1, 1, 1}};
        const Vec3 start{2, 3, 5};
        Vec3 moved = start;
        TransformPoint(moved, a);
        QCOMPARE(QVector3DToTVec3(MatrixToQMatrix4x4(a).map(TVec3ToQVector3D(start))), moved);
        TransformPoint(moved, b);
        const QMatrix4x4 both = MatrixToQMatrix4x4(b) * MatrixToQMatrix4x4(a);
        QCOMPARE(QVector3DToTVec3(both.map(TVec3ToQVector3D(start))), moved);
        QCOMPARE(MatrixToQMatrix4x4(a * b), both);
        QCOMPARE(QMatrix4x4ToMatrix(MatrixToQMatrix4x4(kPrimes)), kPrimes);
        QCOMPARE(MatrixToQMatrix4x4(kPrimes)(3, 0), 7.0f); // row and column change places

        const Matrix2 texture(1, 2, 3, 4, 5, 6);
        QCOMPARE(Floats(texture), QStringLiteral("1, 2, 0, 3, 4, 0, 5, 6, 1"));
        QCOMPARE(Matrix2ToQTransform(texture).map(QPointF(10, 100)), QPointF(10 + 300 + 5, 20 + 400 + 6));
        QCOMPARE(QTransformToMatrix2(Matrix2ToQTransform(texture)), texture);
        QCOMPARE(QVector2DToTVec2(TVec2ToQVector2D({1, 2})), (TVec2<float>{1, 2}));
    }

    void Equality()
    {
        for (float& element : Matrix(kCounted).m) {
            const std::size_t index = std::size_t(element) - 1;
            Matrix other = kCounted;
            other.m[index] = -1;
            QVERIFY(other != kCounted);
        }
        QVERIFY(kCounted == Matrix(kCounted) && Matrix{{0.0f}} == Matrix{{-0.0f}});
        QVERIFY(Matrix2(1, 2, 3, 4, 5, 6) != Matrix2(1, 2, 3, 4, 5, 7));
        QVERIFY((Vec3{1, 2, 3} != Vec3{0, 2, 3}) && (Vec3{1, 2, 3} != Vec3{1, 0, 3}) && (Vec3{1, 2, 3} != Vec3{1, 2, 0}));
        QVERIFY((TVec2<float>{1, 2} != TVec2<float>{0, 2}) && (TVec2<float>{1, 2} != TVec2<float>{1, 0}));
        QVERIFY((Box{{1, 2, 3}, {4, 5, 6}} != Box{{1, 2, 3}, {4, 5, 7}}) && (Box{{1, 2, 3}, {4, 5, 6}} != Box{{1, 2, 0}, {4, 5, 6}}));
        QVERIFY((ColorF{1, 2, 3, 4} == ColorF{1, 2, 3, 4}) && (ColorF{1, 2, 3, 4} != ColorF{1, 2, 3, 5}));
    }

    void VectorArithmetic()
    {
        const Vec3 a{1, 2, 3};
        const Vec3 b{5, 7, 11};
        QCOMPARE(Floats(a + b), QStringLiteral("6, 9, 14"));
        QCOMPARE(Floats(a - b), QStringLiteral("-4, -5, -8"));
        QCOMPARE(Floats(-a * 2.0f), QStringLiteral("-2, -4, -6"));
        QCOMPARE(Dot(a, b), 52.0f);
        QCOMPARE(Floats(Cross(a, b)), QStringLiteral("1, 4, -3"));
        QCOMPARE(Floats(Normalized({2, -3, 6})), Floats(Vec3{2.0f / 7, -3.0f / 7, 6.0f / 7}));
        QCOMPARE(Floats(Normalized({0, -0.0f, 0})), QStringLiteral("0, -0, 0"));
        QCOMPARE(Floats(Normalized({kNaN, 1, 0})), QStringLiteral("nan, nan, nan"));
        QCOMPARE(Floats((TVec2<float>{1, 2} + TVec2<float>{5, 7} * 2.0f) - TVec2<float>{1, 1}), QStringLiteral("10, 15"));
    }

    void Boxes_data()
    {
        QTest::addColumn<QVector<Vec3>>("points");
        QTest::addColumn<QString>("expected");
        const QString empty = QStringLiteral("3.40282347e+38, 3.40282347e+38, 3.40282347e+38, "
                                             "-3.40282347e+38, -3.40282347e+38, -3.40282347e+38");
        QTest::newRow("nothing") << QVector<Vec3>{} << empty;
        QTest::newRow("one point becomes the box") << QVector<Vec3>{{1, 2, 3}} << "1, 2, 3, 1, 2, 3";
        QTest::newRow("each axis for itself") << QVector<Vec3>{{1, -2, 3}, {-1, 2, 3}, {0, 0, 9}} << "-1, -2, 3, 1, 2, 9";
        QTest::newRow("not a number changes nothing") << QVector<Vec3>{{kNaN, kNaN, kNaN}} << empty;
        QTest::newRow("not a number on one axis") << QVector<Vec3>{{1, 2, 3}, {kNaN, 5, kNaN}} << "1, 2, 3, 1, 5, 3";
        QTest::newRow("equal is neither smaller nor larger") << QVector<Vec3>{{0, -0.0f, 0}, {-0.0f, 0, -0.0f}} << "0, -0, 0, 0, -0, 0";
        QTest::newRow("infinite") << QVector<Vec3>{{kInfinity, 0, -kInfinity}} << "3.40282347e+38, 0, -inf, inf, 0, -3.40282347e+38";
    }

    void Boxes()
    {
        QFETCH(QVector<Vec3>, points);
        QFETCH(QString, expected);
        Box byPoints;
        Box byBoxes;
        for (const Vec3& point : points) {
            byPoints.Extend(point);
            byBoxes.Extend(Box{point, point});
            byBoxes.Extend(Box());
        }
        QCOMPARE(Floats(byPoints), expected);
        QCOMPARE(Floats(byBoxes), expected);
    }

    void BoxMeasures()
    {
        const Box box{{0.1f, -4, 2}, {3, 8, 2}};
        QCOMPARE(Floats(box.Center()), Floats(Vec3{(0.1f + 3.0f) * 0.5f, 2, 2}));
        const float halfOfX = (0.1f + 3.0f) * 0.5f - 0.1f; // half the width has another last bit
        QVERIFY(halfOfX != (3.0f - 0.1f) * 0.5f);
        QCOMPARE(Floats(box.HalfExtent()), Floats(Vec3{halfOfX, 6, 0}));
        QVERIFY(!box.IsEmpty());
        QVERIFY(Box().IsEmpty() && (Box{{0, 0, 1}, {0, 0, 0}}).IsEmpty() && (Box{{0, 1, 0}, {0, 0, 0}}).IsEmpty());
        // An outer box whose ends come from different boxes: the other's minimum never raises the maximum.
        Box outer{{0, 0, 0}, {1, 1, 1}};
        outer.Extend(Box{{5, -5, 0.5f}, {-5, 5, 0.5f}});
        QCOMPARE(Floats(outer), QStringLiteral("0, -5, 0, 1, 5, 1"));
    }

    void Colors_data()
    {
        QTest::addColumn<ColorF>("color");
        QTest::addColumn<QColor>("expected");
        QTest::newRow("clamped and truncated, alpha ignored") << ColorF{-0.5f, 0.5f, 2, 0} << QColor(0, 127, 255);
        QTest::newRow("just below one") << ColorF{0.999f, 1, 0.9999999f, 1} << QColor(254, 255, 254);
        QTest::newRow("not a number is black") << ColorF{kNaN, 0.25f, kNaN, kNaN} << QColor(0, 63, 0);
        QTest::newRow("infinite is full") << ColorF{kInfinity, -kInfinity, 1e-30f, 1} << QColor(255, 0, 0);
    }

    void Colors()
    {
        QFETCH(ColorF, color);
        QTEST(ColorToQColor(color), "expected");
    }

    void ColorsFromTheToolkit()
    {
        const float unit = 0.003921568859368563f;
        QCOMPARE(Floats(QColorToColorF(QColor(1, 3, 255, 0))), Floats(ColorF{unit, 3.0f * unit, 255.0f * unit, 1}));
        QCOMPARE(Floats(QColorToColorF(QColor::fromHsv(120, 255, 100))), Floats(ColorF{0, 100.0f * unit, 0, 1}));
        QCOMPARE(Floats(QColorToColorF(QColor::fromRgbF(0.5, 0, 0))), Floats(ColorF{128.0f * unit, 0, 0, 1}));
    }

    void VariantToBool_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<bool>("expected");
        QTest::newRow("bool true") << QVariant(true) << true;
        QTest::newRow("bool false") << QVariant(false) << false;
        QTest::newRow("int 5") << QVariant(5) << true;
        QTest::newRow("int 0") << QVariant(0) << false;
        QTest::newRow("uint beyond int") << QVariant(4294967295u) << true;
        QTest::newRow("uint 0") << QVariant(0u) << false;
        QTest::newRow("long long -1") << QVariant(-1LL) << true;
        QTest::newRow("long long without low bits") << QVariant(1LL << 32) << false;
        QTest::newRow("unsigned long long 1") << QVariant(1ULL) << true;
        QTest::newRow("unsigned long long without low bits") << QVariant(1ULL << 40) << false;
        QTest::newRow("a long goes by its text") << QVariant::fromValue<long>(1) << false;
        QTest::newRow("an unsigned long goes by its text") << QVariant::fromValue<ulong>(1) << false;
        QTest::newRow("a short goes by its text") << QVariant::fromValue<short>(1) << false;
        QTest::newRow("a float goes by its text") << QVariant(1.0f) << false;
        QTest::newRow("a double goes by its text") << QVariant(1.0) << false;
        QTest::newRow("text true") << QVariant(QStringLiteral("true")) << true;
        QTest::newRow("text TRUE") << QVariant(QStringLiteral("TRUE")) << true;
        QTest::newRow("text tRuE as bytes") << QVariant(QByteArray("tRuE")) << true;
        QTest::newRow("text 1") << QVariant(QStringLiteral("1")) << false;
        QTest::newRow("text yes") << QVariant(QStringLiteral("yes")) << false;
        QTest::newRow("text true with a space") << QVariant(QStringLiteral("true ")) << false;
        QTest::newRow("longer text that begins with true") << QVariant(QStringLiteral("trueish")) << false;
        QTest::newRow("nothing at all") << QVariant() << false;
        QTest::newRow("a null bool") << QVariant(QVariant::Bool) << false;
    }

    void VariantToBool()
    {
        QFETCH(QVariant, value);
        QTEST(QVariantToBool(value), "expected");
    }

    void RectToText_data()
    {
        QTest::addColumn<QRectF>("rect");
        QTest::addColumn<QString>("expected");
        QTest::newRow("one decimal survives") << QRectF(12.5, 3, 0.1, 100) << "12.5 3 0.1 100";
        QTest::newRow("two decimals change places") << QRectF(0, 0, 0.25, 100) << "0 0 0.52 100";
        QTest::newRow("the sixth is lost, five are turned round") << QRectF(1.123456, -2.000009, 10.1, 0.50005) << "1.54321 -2 10.1 0.50005";
        QTest::newRow("zeros between digits are kept") << QRectF(0.10203, 1.0203, 0.00001, 0) << "0.30201 1.3020 0.10000 0";
        QTest::newRow("in x, y, width, height order") << QRectF(1, 2, 3, 4) << "1 2 3 4";
        QTest::newRow("large, without exponent or grouping") << QRectF(1e15, -123456789, 1, 2000) << "1000000000000000 -123456789 1 2000";
    }

    void RectToText()
    {
        QFETCH(QRectF, rect);
        const QVariant text = QRectFToQVariant(rect);
        QCOMPARE(text.userType(), int(QMetaType::QString));
        QTEST(text.toString(), "expected");
    }

    void TextToRect_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QRectF>("expected");
        const QRectF refused(-1, -2, -3, -4);
        const auto row = [](const char* name, const char* text, const QRectF& expected) {
            QTest::newRow(name) << QVariant(QString::fromLatin1(text)) << expected;
        };
        row("four numbers in order", "1.5 -2 3 4.25", QRectF(1.5, -2, 3, 4.25));
        row("narrowed to float", "0.1 16777217 0 0", QRectF(double(0.1f), 16777216, 0, 0));
        row("exponent", "1e3 0 10 10", refused);
        row("exponent in capitals", "1E3 0 10 10", refused);
        row("an e anywhere", "1 2 3 4e", refused);
        row("three numbers", "1 2 3", refused);
        row("five numbers", "1 2 3 4 5", refused);
        row("a word as third", "1 2 x 4", refused);
        row("a word as fourth", "1 2 3 x", refused);
        row("decimal commas", "1,5 2 3 4", refused);
        row("two spaces", "1  2 3 4", refused);
        row("two spaces and three numbers", "1  2 3", refused);
        row("a space at the end", "1 2 3 4 ", refused);
        row("tabs", "1\t2\t3\t4", refused);
        row("too large for a float", "1 2 3 1000000000000000000000000000000000000000", refused);
        row("empty", "", refused);
        QTest::newRow("nothing at all, not even text") << QVariant() << refused;
        QTest::newRow("bytes read as text") << QVariant(QByteArray("1 2 3 4")) << QRectF(1, 2, 3, 4);
        QTest::newRow("a rectangle is no text") << QVariant(QRectF(1, 2, 3, 4)) << refused;
    }

    void TextToRect()
    {
        QFETCH(QVariant, value);
        QTEST(QVariantToQRectF(value, QRectF(-1, -2, -3, -4)), "expected");
    }

    void PixelsAndMillimetres()
    {
        // For these values dividing first, or working in double, ends in other bits.
        for (const auto& [length, dpi] : {std::pair(3.0f, 72.0f), std::pair(3.0f, 150.0f), std::pair(0.3f, 150.0f)}) {
            QCOMPARE(Floats(pixelsToMM(length, dpi)), Floats(length * 25.4f / dpi));
            QCOMPARE(Floats(mmToPixels(length, dpi)), Floats(length * dpi / 25.4f));
        }
        QCOMPARE(Floats(pixelsToMM(1, 0)), QStringLiteral("inf"));
    }

    void Durations_data()
    {
        QTest::addColumn<qulonglong>("ms");
        QTest::addColumn<QTime>("expected");
        const qulonglong hour = 3600000;
        QTest::newRow("nothing") << 0ULL << QTime(0, 0);
        QTest::newRow("every part") << 3723004ULL << QTime(1, 2, 3, 4);
        QTest::newRow("just below a minute") << 59999ULL << QTime(0, 0, 59, 999);
        QTest::newRow("just below a day") << 24 * hour - 1 << QTime(23, 59, 59, 999);
        QTest::newRow("a day") << 24 * hour << QTime();
        QTest::newRow("hours that an int would wrap to zero") << (1ULL << 32) * hour << QTime();
        QTest::newRow("hours that an int would wrap to one") << ((1ULL << 32) + 1) * hour << QTime();
        QTest::newRow("the longest") << ~0ULL << QTime();
    }

    void Durations()
    {
        QFETCH(qulonglong, ms);
        QTEST(millisecondsToQTime(ms), "expected");
    }

    void DebugTexts()
    {
        QCOMPARE(Printed(TVec2<float>{0.5f, -2}), QStringLiteral("TVec2(0.5, -2)"));
        QCOMPARE(Printed(Vec3{0.5f, -2, 3}), QStringLiteral("TVec3(0.5, -2, 3)"));
        QCOMPARE(Printed(Box{{1, 2, 3}, {4, 5, 6.5f}}), QStringLiteral("TBBox(TVec3(1, 2, 3), TVec3(4, 5, 6.5))"));
        QCOMPARE(Printed(ColorF{0.5f, 1, 0, 0.25f}), QStringLiteral("ColorF(0.5, 1, 0, 0.25)"));
        QCOMPARE(Printed(kCounted), QStringLiteral("Matrix(1, 2, 3, 4; 5, 6, 7, 8; 9, 10, 11, 12; 13, 14, 15, 16)"));
        QCOMPARE(Printed(Matrix2(1, 2, 3, 4, 5, 6.5f)), QStringLiteral("Matrix2(1, 2; 3, 4; 5, 6.5)"));
    }
};

QTEST_APPLESS_MAIN(ValuesTest)
#include "values_test.moc"
