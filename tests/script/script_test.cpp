#include "lumenta/platform/IDocumentContext.h"
#include "lumenta/platform/IScriptRunner.h"
#include "lumenta/platform/IScriptRunnerOutput.h"
#include "lumenta/script/OutputHandlerHolder.h"
#include "lumenta/script/ScriptArguments.h"
#include "lumenta/script/ScriptDocument.h"
#include "tests/foundation/DecimalComma.h"
#include "tests/foundation/Exact.h"

#include <QScriptContext>
#include <QScriptEngine>
#include <QScriptValue>

namespace {

constexpr auto Float = parseScriptValueToFloat;
constexpr auto Int = parseScriptValueToInt;
constexpr auto String = parseScriptValueToString;
constexpr auto Bool = parseScriptValueToBool;

QString label = QStringLiteral("opacity");

/// What a script gets that hands `argument` over to a native function: "true", or
/// what it catches, which the function must be told alike; and what then is in the
/// function's variable, `result` before.
template <typename Parse, typename Result, typename... Bounds>
QString Called(Parse parse, const char* argument, Result result, Bounds... bounds)
{
    static std::function<bool(const QScriptValue&, QScriptEngine*)> taker;
    bool isTaken = false;
    taker = [&](const auto& value, auto* engine) { return isTaken = parse(value, label, engine, bounds..., result); };
    QScriptEngine engine;
    const auto take = [](QScriptContext* context, QScriptEngine* caller) {
        return taker(context->argument(0), caller) ? QScriptValue("taken") : QScriptValue();
    };
    engine.globalObject().setProperty("take", engine.newFunction(take));
    const QString program = "try { take(%1) } catch (e) { e.constructor === Error ? e.message : 'no Error' }";
    const QString answer = engine.evaluate(program.arg(argument)).toString();
    const QString also = isTaken == (answer == "taken") ? "" : "told otherwise to the function, ";
    return (engine.hasUncaughtException() ? "uncaught " : "") + also + answer + "; " + QVariant(result).toString();
}

[[noreturn]] void No() { qFatal("a stand-in was asked for what it is not for"); }

struct Console final : IScriptRunnerOutput {
    void OnOutput(const QString&) override { No(); }
    void OnError(const QString&, const QString&, int) override { No(); }
};

struct Runner final : IScriptRunner {
    QList<IScriptRunnerOutput*> outputs;

    void AddOutput(IScriptRunnerOutput& output) override { outputs << &output; }
    void RemoveOutput(IScriptRunnerOutput& output) override { outputs.removeAll(&output); }
    bool Run(const QString& program, const QString&) override { throw program; }
};

static_assert(!std::is_copy_constructible_v<OutputHandlerHolder> && !std::is_copy_assignable_v<OutputHandlerHolder>);
static_assert(std::is_nothrow_destructible_v<OutputHandlerHolder>);

} // namespace

/// Serves as a document, too.
class ScriptTest : public QObject, public IDocumentContext {
    Q_OBJECT
    Q_INTERFACES(IDocumentContext)

    IScene* GetScene() const override { No(); }
    IUserInterface* GetUserInterface() const override { No(); }
    IScriptRunner* GetScriptRunner() const override { No(); }

    QTemporaryDir m_folder;

private Q_SLOTS:
    /// Its comma must show nowhere.
    void initTestCase() { QVERIFY(LetDecimalCommaReign(m_folder)); }

    void Arguments_data()
    {
        AnswerColumns();
        const QString range = "opacity should be in range [%1, %2]; %3";
        const QString wrong = "opacity: invalid parameter '%1', %2 expected; %3";
        Row("the nearest float, on both bounds", Called(Float, "0.2", -7.0f, 0.2f, 0.2f), "taken; 0.20000000298023224");
        Row("above, and stored all the same", Called(Float, "5", -7.0f, 0.0f, 1.0f), range.arg("0", "1", "5"));
        Row("below", Called(Float, "-0.5", -7.0f, 0.0f, 1.0f), range.arg("0", "1", "-0.5"));
        Row("NaN is in no range", Called(Float, "0/0", -7.0f, -kInfinity, kInfinity), range.arg("-inf", "inf", "nan"));
        Row("beyond any float", Called(Float, "1e300", -7.0f, 0.0f, 1.0f), range.arg("0", "1", "inf"));
        Row("six digits", Called(Float, "0", -7.0f, 1234567.0f, 0.1f), range.arg("1.23457e+06", "0.1", "0"));
        Row("a text made a number", Called(Float, "Number('0.5') + parseFloat('0.25')", -7.0f, 0.0f, 1.0f), "taken; 0.75");
        Row("no decimal comma", Called(Float, "Number('0,5')", -7.0f, 0.0f, 1.0f), range.arg("0", "1", "nan"));
        Row("a number made a text", Called(String, "0.5 + ' ' + (2.5).toFixed(1)", QString()), "taken; 0.5 2.5");
        Row("an object", Called(Float, "new Number(0.5)", -7.0f, 0.0f, 1.0f), wrong.arg("0.5", "float", "-7"));
        const char* const unshowable = "{toString: function() { throw 'no text' }}";
        Row("can't be shown", Called(Float, unshowable, -7.0f, 0.0f, 1.0f), wrong.arg("no text", "float", "-7"));

        Row("a fraction goes towards zero", Called(Int, "-0.99", -7, 0, 9), "taken; 0");
        Row("one above, and stored all the same", Called(Int, "10", -7, 0, 9), range.arg("0", "9", "10"));
        Row("wraps into the range", Called(Int, "4294967297", -7, 0, 9), "taken; 1");
        Row("wraps out of it", Called(Int, "2147483648", -7, 0, INT_MAX), range.arg("0", "2147483647", "-2147483648"));
        Row("NaN as an integer", Called(Int, "NaN", -7, 0, 9), "taken; 0");
        Row("text as an integer", Called(Int, "'3'", -7, 0, 9), wrong.arg("3", "integer", "-7"));
        Row("a fraction as text", Called(Int, "'' + 1.5", -7, 0, 9), wrong.arg("1.5", "integer", "-7"));

        Row("a string", Called(String, "'a\\u00e4%1'", QString()), QString::fromUtf8("taken; a\u00e4%1"));
        Row("a number is none", Called(String, "1.5", QString("old")), wrong.arg("1.5", "string", "old"));
        Row("true", Called(Bool, "true", false), "taken; true");
        Row("false", Called(Bool, "false", true), "taken; false");
        Row("1 is not true", Called(Bool, "1", false), wrong.arg("1", "boolean", "false"));
        label = "%1";
        Row("the name is filled in first", Called(Int, "5", -7, 0, 1), "0 should be in range [1, %3]; 5");
        const char* const filled = "x: invalid parameter '%2', integer expected; -7";
        Row("the name is filled in first, with a wrong type, too", Called(Int, "'x'", -7, 0, 1), filled);
    }

    void Arguments() { CompareAnswer(); }

    void WithoutAnEngineNothingHappens()
    {
        float number = -7.0f;
        int integer = -7;
        QString text = "old";
        bool flag = true;
        QVERIFY(!Float(QScriptValue(0.5), "x", nullptr, 0.0f, 1.0f, number) && number < -6.0f);
        QVERIFY(!Int(QScriptValue(1), "x", nullptr, 0, 1, integer) && integer == -7);
        QVERIFY(!String(QScriptValue("s"), "x", nullptr, text) && text == "old");
        QVERIFY(!Bool(QScriptValue(false), "x", nullptr, flag) && flag);
    }

    void DocumentOfAnEngine()
    {
        QScriptEngine engine;
        const auto found = [&engine](const QVariant& property) {
            engine.setProperty("doc-context", property);
            return documentContextFromScriptEngine(&engine);
        };
        const auto of = [](QObject* object) { return QVariant::fromValue(object); };
        QVERIFY(!documentContextFromScriptEngine(nullptr) && !documentContextFromScriptEngine(&engine));
        QCOMPARE(found(of(this)), this);
        QVERIFY(!found(of(&engine)) && !found(of(nullptr)) && !found("document"));
    }

    void OutputIsReceivedForTheRunOnly()
    {
        Runner runner;
        Console always, once;
        runner.AddOutput(always);
        try {
            const OutputHandlerHolder holder(runner, once);
            QCOMPARE(runner.outputs, QList<IScriptRunnerOutput*>({&always, &once}));
            runner.Run("a run that throws", QString());
        } catch (const QString&) {
        }
        QCOMPARE(runner.outputs, QList<IScriptRunnerOutput*>{&always});
    }
};

QTEST_GUILESS_MAIN(ScriptTest)
#include "script_test.moc"
