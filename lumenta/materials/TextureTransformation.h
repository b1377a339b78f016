#pragma once

#include "lumenta/Export.h"
#include "lumenta/foundation/Matrix2.h"
#include "lumenta/interfaces/IMaterial.h"

#include <QRectF>

/// Where a point of the texture comes to lie: (u, v) of the unit square, turned or
/// mirrored, in `rect`. Overwrites all of `matrix`.
///
/// A number that is no transformation gives the identity whatever the rectangle,
/// which callers depend on. In an empty rectangle every point lies in one place,
/// so the matrix has no inverse. Sums are formed in double and rounded once.
/// Reentrant; never throws.
LUMENTA_EXPORT void BuildTextureTransformationMatrix(Matrix2& matrix, eMaterialTextureTransformation transformation,
                                                     const QRectF& rect);
