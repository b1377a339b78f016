#include "lumenta/script/ScriptArguments.h"
#include "fuzz/Input.h"
#include "lumenta/platform/IDocumentContext.h"
#include "lumenta/script/ScriptDocument.h"

#include <QDateTime>
#include <QRegExp>
#include <QScriptContext>
#include <QScriptEngine>
#include <QVariant>

#include <cmath>
#include <limits>
#include <memory>

// Arguments of every kind that a script can pass, and some that none can.

using Fuzz::Require;

namespace {

enum class Type { Number, Text, Boolean, Other };

struct Argument {
    QScriptValue value;
    Type type;
};

/// The engine takes some NaNs for pointers, so none but its own comes to scripts.
double Number(double number)
{
    return std::isnan(number) ? std::numeric_limits<double>::quiet_NaN() : number;
}

QScriptValue Throw(QScriptContext* pContext, QScriptEngine*)
{
    return pContext->throwError(QStringLiteral("a text that throws"));
}

Argument MakeArgument(Fuzz::Input& input, QScriptEngine& engine)
{
    // clang-format off
    switch (input.Below(16)) {
    case 0: return {QScriptValue(&engine, Number(input.Raw<double>())), Type::Number};
    case 1: return {QScriptValue(&engine, input.Raw<int>()), Type::Number};
    case 2: return {QScriptValue(Number(input.Raw<double>())), Type::Number}; // of no engine
    case 3: return {QScriptValue(&engine, Number(static_cast<double>(input.Float()))), Type::Number};
    case 4: return {QScriptValue(&engine, input.Text()), Type::Text};
    case 5: return {QScriptValue(input.Text()), Type::Text};
    case 6: return {QScriptValue(&engine, input.Flag()), Type::Boolean};
    case 7: return {engine.undefinedValue(), Type::Other};
    case 8: return {engine.nullValue(), Type::Other};
    case 9: return {QScriptValue(), Type::Other};
    case 10: return {engine.newRegExp(QRegExp(input.Text())), Type::Other};
    case 11: return {engine.newDate(Number(input.Raw<double>())), Type::Other};
    case 12: return {engine.newVariant(QVariant(input.Text())), Type::Other};
    case 13: {
        QScriptValue object = engine.newObject();
        object.setProperty(QStringLiteral("toString"), engine.newFunction(Throw));
        return {object, Type::Other};
    }
    case 14: {
        QScriptValue array = engine.newArray();
        for (quint32 i = input.Below(8); i > 0; --i)
            array.setProperty(i - 1, QScriptValue(input.Text()));
        if (input.Flag()) array.setProperty(0, array); // holds itself
        return {array, Type::Other};
    }
    default: return {QScriptValue(&engine, Number(input.Raw<double>())).toObject(), Type::Other};
    }
    // clang-format on
}

/// That a check says what it should, and the script hears of it.
void RequireAnswer(bool answer, bool expected, QScriptEngine* pEngine)
{
    Require(answer == expected, "an argument of the right type, in range, is taken");
    if (!pEngine) return;
    Require(pEngine->hasUncaughtException() == !expected, "a script hears of what is wrong");
    pEngine->clearExceptions();
}

void Check(Fuzz::Input& input, QScriptEngine& ours)
{
    const Argument argument = MakeArgument(input, ours);
    QScriptEngine* const pEngine = input.Below(16) == 15 ? nullptr : &ours;
    const QString name = input.Text();
    ours.clearExceptions();
    const bool isNumber = pEngine && argument.type == Type::Number;

    const float low = input.Float(), high = input.Float();
    float real = -1.0f;
    const bool isReal = parseScriptValueToFloat(argument.value, name, pEngine, low, high, real);
    const auto asFloat = isNumber ? static_cast<float>(argument.value.toNumber()) : -1.0f;
    Require(std::memcmp(&real, &asFloat, sizeof real) == 0, "a number is stored, and nothing else");
    RequireAnswer(isReal, isNumber && low <= real && real <= high, pEngine);

    const int least = input.Raw<int>(), most = input.Raw<int>();
    int whole = -1;
    const bool isWhole = parseScriptValueToInt(argument.value, name, pEngine, least, most, whole);
    Require(isNumber || whole == -1, "a whole number is stored, and nothing else");
    RequireAnswer(isWhole, isNumber && least <= whole && whole <= most, pEngine);

    const QString before = QStringLiteral("before");
    QString text = before;
    const bool isText = parseScriptValueToString(argument.value, name, pEngine, text);
    Require(text == (isText ? argument.value.toString() : before), "a text is stored, and nothing else");
    RequireAnswer(isText, pEngine && argument.type == Type::Text, pEngine);

    bool flag = false;
    const bool isFlag = parseScriptValueToBool(argument.value, name, pEngine, flag);
    Require(flag == (isFlag && argument.value.toBool()), "a flag is stored, and nothing else");
    RequireAnswer(isFlag, pEngine && argument.type == Type::Boolean, pEngine);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static std::unique_ptr<QScriptEngine> engine;
    static int nRuns = 0;
    if (nRuns++ % 1000 == 0) engine = std::make_unique<QScriptEngine>();
    Fuzz::Input input(data, size);
    for (int i = 0; i < 8 && !input.IsEmpty(); ++i) {
        Check(input, *engine);
        engine->setProperty("doc-context",
                            input.Flag() ? QVariant(input.Text()) : QVariant::fromValue<QObject*>(engine.get()));
        Require(!documentContextFromScriptEngine(engine.get()), "what is no document is none");
    }
    return 0;
}
