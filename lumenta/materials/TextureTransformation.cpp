#include "lumenta/materials/TextureTransformation.h"

void BuildTextureTransformationMatrix(Matrix2& matrix, eMaterialTextureTransformation transformation,
                                      const QRectF& rect)
{
    const auto x = static_cast<float>(rect.x());
    const auto y = static_cast<float>(rect.y());
    const auto w = static_cast<float>(rect.width());
    const auto h = static_cast<float>(rect.height());
    const auto xEnd = static_cast<float>(rect.x() + rect.width());
    const auto yEnd = static_cast<float>(rect.y() + rect.height());

    const auto placement = [&] {
        switch (transformation) {
        case TT_Identity:
            return Matrix2(w, 0.0f, 0.0f, h, x, y);
        case TT_RotateMinus90:
            return Matrix2(0.0f, -h, w, 0.0f, x, yEnd);
        case TT_RotatePlus90:
            return Matrix2(0.0f, h, -w, 0.0f, xEnd, y);
        case TT_Rotate180:
            return Matrix2(-w, 0.0f, 0.0f, -h, xEnd, yEnd);
        case TT_MirrorU:
            return Matrix2(-w, 0.0f, 0.0f, h, xEnd, y);
        case TT_MirrorV:
            return Matrix2(w, 0.0f, 0.0f, -h, x, yEnd);
        }
        return Matrix2(1.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f);
    };
    matrix = placement();
}
