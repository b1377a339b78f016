#include "reference/host/script/ScriptRunner.h"

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/platform/IScriptRunnerOutput.h"
#include "reference/host/script/ScriptBindings.h"

#include <QScopedValueRollback>
#include <QScriptContext>
#include <QScriptContextInfo>
#include <QScriptEngine>
#include <QScriptValue>

#include <algorithm>
#include <optional>

namespace Host {

namespace {

const QString kStopped = QStringLiteral("the script was stopped");

/// Of the script that has called what runs now.
int CurrentLine(const QScriptEngine& engine)
{
    for (const QScriptContext* pContext = engine.currentContext(); pContext; pContext = pContext->parentContext()) {
        const int nLine = QScriptContextInfo(pContext).lineNumber();
        if (nLine > 0) return nLine;
    }
    return 1;
}

} // namespace

struct ScriptRunner::Execution {
    QScriptEngine engine;
    std::optional<int> stoppedAt; ///< The line.
};

ScriptRunner::ScriptRunner(QObject& document)
    : m_document(document)
{
}

void ScriptRunner::AddOutput(IScriptRunnerOutput& output)
{
    if (std::find(m_outputs.begin(), m_outputs.end(), &output) == m_outputs.end()) m_outputs.push_back(&output);
}

void ScriptRunner::RemoveOutput(IScriptRunnerOutput& output)
{
    m_outputs.erase(std::remove(m_outputs.begin(), m_outputs.end(), &output), m_outputs.end());
}

/// Receivers may come and go meanwhile: those that have gone hear nothing more.
template <typename Tell>
void ScriptRunner::TellOutputs(const Tell& tell)
{
    const std::vector<IScriptRunnerOutput*> outputs = m_outputs;
    for (IScriptRunnerOutput* const pOutput : outputs)
        if (std::find(m_outputs.begin(), m_outputs.end(), pOutput) != m_outputs.end()) tell(*pOutput);
}

void ScriptRunner::TellError(const QString& strText, const QString& strFileName, int nLine)
{
    TellOutputs([&](IScriptRunnerOutput& output) { output.OnError(strText, strFileName, std::max(nLine, 1)); });
}

QScriptValue ScriptRunner::Print(QScriptContext* pContext, QScriptEngine* pEngine, void* pRunner)
{
    auto& runner = *static_cast<ScriptRunner*>(pRunner);
    QStringList texts;
    for (int i = 0; i < pContext->argumentCount(); ++i) {
        texts += pContext->argument(i).toString();
        if (pEngine->hasUncaughtException()) return {}; // of a toString() of the script's
    }
    const QString failure = runner.TellOutput(texts.join(QLatin1Char(' ')) + QLatin1Char('\n'));
    return failure.isEmpty() ? QScriptValue(QScriptValue::UndefinedValue) : pContext->throwError(failure);
}

/// \return what has gone wrong; empty for nothing
QString ScriptRunner::TellOutput(const QString& strText)
{
    const std::optional<int>& stoppedAt = m_pExecution->stoppedAt;
    try {
        if (!stoppedAt) TellOutputs([&strText](IScriptRunnerOutput& output) { output.OnOutput(strText); });
    } catch (const Exception& exception) {
        return exception.GetErrorText();
    } catch (...) {
        return QStringLiteral("print: a receiver has failed");
    }
    // The engine itself looks seldom whether it has been stopped.
    return stoppedAt ? kStopped : QString();
}

void ScriptRunner::Prepare(QScriptEngine& engine)
{
    engine.setProperty("doc-context", QVariant::fromValue(&m_document));
    AddBindings(engine);
    QScriptValue global = engine.globalObject();
    global.setProperty(QStringLiteral("print"), engine.newFunction(Print, this));
    global.setProperty(QStringLiteral("args"), qScriptValueFromSequence(&engine, m_arguments));
}

bool ScriptRunner::Run(const QString& strProgram, const QString& strFileName)
{
    const QScriptSyntaxCheckResult syntax = QScriptEngine::checkSyntax(strProgram);
    if (syntax.state() != QScriptSyntaxCheckResult::Valid) {
        const QString message = syntax.errorMessage();
        TellError(QStringLiteral("SyntaxError: ") + (message.isEmpty() ? QStringLiteral("Parse error") : message),
                  strFileName, syntax.errorLineNumber());
        return false;
    }
    Execution execution;
    const QScopedValueRollback<Execution*> rollback(m_pExecution, &execution);
    Prepare(execution.engine);
    execution.engine.evaluate(strProgram, strFileName);
    return TellEnd(execution, strFileName);
}

bool ScriptRunner::TellEnd(const Execution& execution, const QString& strFileName)
{
    const QScriptEngine& engine = execution.engine;
    if (execution.stoppedAt) {
        TellError(kStopped, strFileName, *execution.stoppedAt);
        return false;
    }
    if (!engine.hasUncaughtException()) return true;
    TellError(engine.uncaughtException().toString(), strFileName, engine.uncaughtExceptionLineNumber());
    return false;
}

void ScriptRunner::Stop()
{
    if (!m_pExecution || m_pExecution->stoppedAt) return;
    m_pExecution->stoppedAt = CurrentLine(m_pExecution->engine);
    m_pExecution->engine.abortEvaluation();
}

} // namespace Host
