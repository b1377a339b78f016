#include "lumenta/script/ScriptArguments.h"

#include <QScriptContext>
#include <QScriptEngine>
#include <QScriptValue>

// One arg() per value, as in the texts of the exceptions.

namespace {

using TypeTest = bool (QScriptValue::*)() const;

/// False also where there is no script that could hear of a wrong type.
bool HasType(TypeTest test, const char* type, const QScriptValue& value, const QString& name, QScriptEngine* engine)
{
    QScriptContext* const context = engine ? engine->currentContext() : nullptr;
    if (!context) return false;
    if ((value.*test)()) return true;
    const QString format = QStringLiteral("%1: invalid parameter '%2', ") + QLatin1String(type) + " expected";
    context->throwError(format.arg(name).arg(value.toString())); // clazy:exclude=qstring-arg
    return false;
}

template <typename Number>
bool IsInRange(Number value, Number minValue, Number maxValue, const QString& name, QScriptEngine& engine)
{
    if (minValue <= value && value <= maxValue) return true;
    const QString format = QStringLiteral("%1 should be in range [%2, %3]");
    engine.currentContext()->throwError(format.arg(name).arg(minValue).arg(maxValue));
    return false;
}

} // namespace

bool parseScriptValueToFloat(const QScriptValue& value, const QString& name, QScriptEngine* engine, float minValue,
                             float maxValue, float& result)
{
    if (!HasType(&QScriptValue::isNumber, "float", value, name, engine)) return false;
    result = static_cast<float>(value.toNumber());
    // As doubles, which the text is made from; the order of floats is the same.
    return IsInRange<double>(double(result), double(minValue), double(maxValue), name, *engine);
}

bool parseScriptValueToInt(const QScriptValue& value, const QString& name, QScriptEngine* engine, int minValue,
                           int maxValue, int& result)
{
    if (!HasType(&QScriptValue::isNumber, "integer", value, name, engine)) return false;
    result = value.toInt32();
    return IsInRange(result, minValue, maxValue, name, *engine);
}

bool parseScriptValueToString(const QScriptValue& value, const QString& name, QScriptEngine* engine, QString& result)
{
    if (!HasType(&QScriptValue::isString, "string", value, name, engine)) return false;
    result = value.toString();
    return true;
}

bool parseScriptValueToBool(const QScriptValue& value, const QString& name, QScriptEngine* engine, bool& result)
{
    if (!HasType(&QScriptValue::isBool, "boolean", value, name, engine)) return false;
    result = value.toBool();
    return true;
}
