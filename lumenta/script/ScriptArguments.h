#pragma once

#include "lumenta/Export.h"

class QScriptEngine;
class QScriptValue;
class QString;

/// \file
/// Checks the arguments of native functions that scripts call:
///
///     QScriptValue SetOpacity(QScriptContext* context, QScriptEngine* engine)
///     {
///         float opacity = 1.0f;
///         if (!parseScriptValueToFloat(context->argument(0), "opacity", engine, 0.0f, 1.0f, opacity))
///             return QScriptValue();
///         ...
///
/// What is wrong with an argument, the script hears: an Error with the text given
/// below is raised in the engine's current context, where it can be caught. The
/// native caller gets false and returns at once. Outside of an evaluation the
/// error is left in the engine as its uncaught exception.
///
/// Types are not converted: 1 is no boolean, "1" is no number, and neither are the
/// objects `new Boolean(true)` and `new Number(1)`. An argument that is missing is
/// undefined, of none of these types.
///
/// With a null engine the answer is false, and nobody hears of anything. A wrong
/// type leaves `result` as it was. Nothing here throws; on the engine's thread.
/// `name` is what the argument is called in the errors, whose numbers do not
/// depend on the locale. A client links Qt5::Script itself.

/// A number, rounded to float.
///
/// | wrong | text of the error |
/// |---|---|
/// | type | "<name>: invalid parameter '<value>', float expected" |
/// | range | "<name> should be in range [<minValue>, <maxValue>]", the bounds in six digits |
///
/// The bounds are within the range; NaN is outside of any. A number that is
/// outside **is stored all the same**: after false, don't rely on `result`.
LUMENTA_EXPORT bool parseScriptValueToFloat(const QScriptValue& value, const QString& name, QScriptEngine* engine,
                                            float minValue, float maxValue, float& result);

/// A number as JavaScript makes a 32-bit integer of it: cut towards zero, then
/// wrapped, so that 4294967297 is 1; NaN and infinities are 0. The range applies
/// to what comes out.
///
/// | wrong | text of the error |
/// |---|---|
/// | type | "<name>: invalid parameter '<value>', integer expected" |
/// | range | "<name> should be in range [<minValue>, <maxValue>]" |
///
/// The bounds are within the range. A number that is outside **is stored all the
/// same**: after false, don't rely on `result`.
LUMENTA_EXPORT bool parseScriptValueToInt(const QScriptValue& value, const QString& name, QScriptEngine* engine,
                                          int minValue, int maxValue, int& result);

/// A string; otherwise the error "<name>: invalid parameter '<value>', string expected".
LUMENTA_EXPORT bool parseScriptValueToString(const QScriptValue& value, const QString& name, QScriptEngine* engine,
                                             QString& result);

/// A boolean; otherwise the error "<name>: invalid parameter '<value>', boolean expected".
LUMENTA_EXPORT bool parseScriptValueToBool(const QScriptValue& value, const QString& name, QScriptEngine* engine,
                                           bool& result);
