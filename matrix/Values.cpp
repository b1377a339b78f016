#include "lumenta/foundation/BBox.h"
#include "lumenta/foundation/CameraMatrices.h"
#include "lumenta/foundation/Color.h"
#include "lumenta/foundation/Conversions.h"
#include "lumenta/foundation/Matrix.h"
#include "lumenta/foundation/Matrix2.h"
#include "lumenta/materials/TextureTransformation.h"
#include "matrix/Trials.h"

// Values of the foundation.

namespace Trials {

namespace {

constexpr int kRounds = 20000;

Matrix2 AnyPlacement(Random& random)
{
    const Vec3 a = AnyVector(random);
    const Vec3 b = AnyVector(random);
    return {a.x, a.y, a.z, b.x, b.y, b.z};
}

void Products(Random& random, Sum& sum)
{
    for (int i = 0; i < kRounds; ++i) {
        const Matrix a = AnyTransform(random);
        Matrix b = AnyTransform(random);
        sum.Add(a * b);
        Multiply(b, a, b);
        sum.Add(b);
        sum.Add(a == b);
    }
}

void Inverses(Random& random, Sum& sum)
{
    for (int i = 0; i < kRounds; ++i) {
        const Matrix source = AnyTransform(random);
        Matrix inverse;
        sum.Add(Inverse(inverse, source));
        sum.Add(inverse);
        Matrix view;
        CalculateViewMatrix(view, source);
        sum.Add(view);
    }
}

void MovedPoints(Random& random, Sum& sum)
{
    for (int i = 0; i < kRounds; ++i) {
        const Matrix matrix = AnyTransform(random);
        Vec3 point = AnyVector(random);
        Vec3 direction = point;
        TransformPoint(point, matrix);
        TransformDirection(direction, matrix);
        sum.Add(point);
        sum.Add(direction);
        sum.Add(matrix.GetTranslation());
    }
}

void Vectors(Random& random, Sum& sum)
{
    for (int i = 0; i < kRounds; ++i) {
        const Vec3 a = AnyVector(random);
        const Vec3 b = AnyVector(random);
        const float factor = AnyFloat(random);
        for (const Vec3& v :
             {a + b, a - b, -a, a * factor, Cross(a, b), Normalized(a), QVector3DToTVec3(TVec3ToQVector3D(b))})
            sum.Add(v);
        const TVec2<float> c{a.x, a.y};
        const TVec2<float> d{b.x, b.y};
        for (const TVec2<float>& v : {c + d, c - d, -c, c * factor, QVector2DToTVec2(TVec2ToQVector2D(c))})
            sum.Add(v);
        sum.Add(Dot(a, b));
        sum.Add(Length(a));
        sum.Add(a == b);
        sum.Add(c != d);
    }
}

template <typename T>
void Boxes(Random& random, Sum& sum)
{
    for (int i = 0; i < kRounds; ++i) {
        TBBox<T> box;
        for (std::uint32_t k = random.Below(4); k > 0; --k) {
            const Vec3 point = AnyVector(random);
            box.Extend(TVec3<T>{T(point.x), T(point.y), T(point.z)});
        }
        TBBox<T> both = box;
        const Vec3 corner = AnyVector(random);
        both.Extend(TBBox<T>({T(corner.x), T(corner.y), T(corner.z)}, {T(corner.y), T(corner.z), T(corner.x)}));
        for (const TVec3<T>& v : {both.min, both.max, box.Center(), box.HalfExtent(), both.Center(), both.HalfExtent()})
            for (const T value : {v.x, v.y, v.z})
                sum.Add(value);
        sum.Add(box.IsEmpty());
        sum.Add(box == both);
    }
}

void Colors(Random& random, Sum& sum)
{
    for (int i = 0; i < kRounds; ++i) {
        const Vec3 v = AnyVector(random);
        const QColor color = ColorToQColor({v.x, v.y * 0.1f, random.Between(-0.1f, 1.1f), AnyFloat(random)});
        sum.Add(std::uint64_t{color.rgba()});
        sum.Add(QColorToColorF(QColor::fromRgba(random.Next())));
    }
}

void Textures(Random& random, Sum& sum)
{
    for (int i = 0; i < kRounds; ++i) {
        const Vec3 a = AnyVector(random);
        const Vec3 b = AnyVector(random);
        Matrix2 placement = AnyPlacement(random);
        const auto number = static_cast<eMaterialTextureTransformation>(random.Below(8));
        BuildTextureTransformationMatrix(placement, number,
                                         {double(a.x) * 0.1, double(a.y) / 3.0, double(b.x) * 0.7, double(b.y)});
        sum.Add(placement);
    }
}

void Exchanged(Random& random, Sum& sum)
{
    for (int i = 0; i < kRounds; ++i) {
        const Matrix matrix = AnyTransform(random);
        sum.Add(QMatrix4x4ToMatrix(MatrixToQMatrix4x4(matrix)));
        const Matrix2 placement = AnyPlacement(random);
        QTransform transform = Matrix2ToQTransform(placement);
        sum.Add(transform.m11() + transform.m22() + transform.dx());
        transform = QTransform(double(matrix.m[0]) / 3.0, double(matrix.m[1]) * 1e30, double(matrix.m[4]) * 1e-30,
                               double(matrix.m[5]), double(matrix.m[12]), double(matrix.m[13]) / 7.0);
        sum.Add(QTransformToMatrix2(transform));
        sum.Add(placement == QTransformToMatrix2(transform));
    }
}

void Lengths(Random& random, Sum& sum)
{
    for (int i = 0; i < kRounds; ++i) {
        const float length = AnyFloat(random);
        const float dpi = AnyFloat(random);
        sum.Add(pixelsToMM(length, dpi));
        sum.Add(mmToPixels(length, dpi));
        sum.Add(pixelsToMM(length, 96.0f));
        sum.Add(mmToPixels(length, 300.0f));
    }
}

} // namespace

std::vector<Trial> Values()
{
    return {{"values", "Multiply", Products},
            {"values", "Inverse, CalculateViewMatrix", Inverses},
            {"values", "TransformPoint, TransformDirection", MovedPoints},
            {"values", "TVec2, TVec3", Vectors},
            {"boxes", "TBBox<float>", Boxes<float>},
            {"boxes", "TBBox<double>", Boxes<double>},
            {"values", "ColorToQColor, QColorToColorF", Colors},
            {"values", "BuildTextureTransformationMatrix", Textures},
            {"values", "matrices of Qt", Exchanged},
            {"sizes", "pixelsToMM, mmToPixels", Lengths}};
}

} // namespace Trials
