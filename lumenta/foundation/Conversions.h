#pragma once

#include "lumenta/Export.h"

#include <QRectF>
#include <QTime>
#include <QVariant>

// Conversions between stored or displayed forms and values. All are reentrant
// and none throws; the texts do not depend on the locale.

/// A stored flag. A Bool answers for itself; Int, UInt, LongLong and ULongLong
/// are true where toInt() is not 0 (so the low 32 bits of a 64-bit number
/// count, which callers depend on); anything else is true only where its text
/// is "true" in any case. The text 1 is false.
LUMENTA_EXPORT bool QVariantToBool(const QVariant& value);

/// A rectangle as text: x, y, width and height with single spaces between,
/// each printed with six decimals and then trimmed.
///
/// The trimmer has two quirks that stored texts depend on: the last decimal is
/// dropped unseen, and the decimals it keeps come out in reverse order. One
/// decimal survives intact (12.5), two do not (0.25 becomes 0.52).
LUMENTA_EXPORT QVariant QRectFToQVariant(QRectF& rect);

/// Reads such a text: exactly four numbers with single spaces between, no
/// scientific notation. Anything else gives `defaultValue`.
LUMENTA_EXPORT QRectF QVariantToQRectF(const QVariant& value, const QRectF& defaultValue);

/// Length in millimetres of `pixels` at `dpi` dots per inch: times 25.4, then
/// divided by `dpi`. In float.
LUMENTA_EXPORT float pixelsToMM(float pixels, float dpi);

/// Pixels that `mm` millimetres take at `dpi` dots per inch: times `dpi`, then
/// divided by 25.4. In float.
LUMENTA_EXPORT float mmToPixels(float mm, float dpi);

/// A duration as a time of day. Hours do not wrap: a day or more gives an
/// invalid QTime, so that a caller can tell it from a short one.
LUMENTA_EXPORT QTime millisecondsToQTime(unsigned long long ms);
