#include "lumenta/materials/TextureTransformation.h"
#include "tests/foundation/Exact.h"

namespace {

Matrix2 Placed(int transformation, const QRectF& rect)
{
    Matrix2 matrix(7, 7, 7, 7, 7, 7);
    matrix.m[2] = matrix.m[5] = matrix.m[8] = 7; // all nine are to be written
    BuildTextureTransformationMatrix(matrix, static_cast<eMaterialTextureTransformation>(transformation), rect);
    return matrix;
}

/// Where (0, 0), (1, 0) and (0, 1) lie.
QString Corners(int transformation)
{
    const QTransform placement = Matrix2ToQTransform(Placed(transformation, {10, 20, 100, 50}));
    QStringList texts;
    for (const QPointF corner : {QPointF(0, 0), QPointF(1, 0), QPointF(0, 1)}) {
        const QPointF at = placement.map(corner);
        texts << QStringLiteral("%1,%2").arg(at.x()).arg(at.y());
    }
    return texts.join(' ');
}

} // namespace

class TextureTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void Placements_data()
    {
        AnswerColumns();
        Row("as it is", Corners(TT_Identity), "10,20 110,20 10,70");
        Row("turned back", Corners(TT_RotateMinus90), "10,70 10,20 110,70");
        Row("turned on", Corners(TT_RotatePlus90), "110,20 110,70 10,20");
        Row("turned over", Corners(TT_Rotate180), "110,70 10,70 110,20");
        Row("mirrored along u", Corners(TT_MirrorU), "110,20 10,20 110,70");
        Row("mirrored along v", Corners(TT_MirrorV), "10,70 110,70 10,20");
        Row("no transformation", Floats(Placed(6, {10, 20, 100, 50})), "1, 0, 0, 0, 1, 0, 0, 0, 1");
        Row("none below zero", Floats(Placed(-1, {10, 20, 100, 50})), "1, 0, 0, 0, 1, 0, 0, 0, 1");
        Row("in an empty rectangle", Floats(Placed(TT_Rotate180, {3, 4, 0, 0})), "-0, 0, 0, 0, -0, 0, 3, 4, 1");
        // 2^24 + 1 is no float, 2^24 + 2 is.
        Row("a sum is rounded once", Floats(Placed(TT_Rotate180, {16777217, -16777217, 1, -1})),
            "-1, 0, 0, 0, 1, 0, 16777218, -16777218, 1");
        Row("what is no sum by itself", Floats(Placed(TT_MirrorU, {16777217, -16777217, 1, -1})),
            "-1, 0, 0, 0, -1, 0, 16777218, -16777216, 1");
    }
    void Placements() { CompareAnswer(); }
};

QTEST_APPLESS_MAIN(TextureTest)
#include "texture_test.moc"
