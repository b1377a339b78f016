#pragma once

#include "lumenta/platform/IScriptRunner.h"

#include <QStringList>

#include <vector>

class QObject;
class QScriptContext;
class QScriptEngine;
class QScriptValue;

namespace Host {

/// Runs scripts against a document: JavaScript, as QtScript speaks it. Beside the
/// language's own, scripts have `scene`, `args` and `print(...)`, which puts a
/// space between what it prints and a line end behind it.
///
/// Each run begins afresh: nothing is left of the one before but what it did to
/// the document. A program that can't be parsed does nothing at all. Runs may be
/// nested, as where a receiver runs another script.
///
/// What receivers throw does not get through a running script, which goes on
/// with an Error. Whoever wants it to end calls Stop().
///
/// Needs a QCoreApplication.
class ScriptRunner final : public IScriptRunner {
public:
    /// \param document implements IDocumentContext, and outlives the runner
    explicit ScriptRunner(QObject& document);

    void AddOutput(IScriptRunnerOutput& output) override;
    void RemoveOutput(IScriptRunnerOutput& output) override;
    bool Run(const QString& strProgram, const QString& strFileName) override;

    /// What scripts find in `args`, from the next run on.
    void SetArguments(const QStringList& arguments) { m_arguments = arguments; }

    /// Ends the innermost run, from within: a receiver, or what else it calls.
    /// The receivers are told so as of an error.
    void Stop();

private:
    struct Execution;

    static QScriptValue Print(QScriptContext* pContext, QScriptEngine* pEngine, void* pRunner);
    void Prepare(QScriptEngine& engine);
    bool TellEnd(const Execution& execution, const QString& strFileName);
    template <typename Tell>
    void TellOutputs(const Tell& tell);
    QString TellOutput(const QString& strText);
    void TellError(const QString& strText, const QString& strFileName, int nLine);

    QObject& m_document;
    QStringList m_arguments;
    std::vector<IScriptRunnerOutput*> m_outputs;
    Execution* m_pExecution = nullptr; ///< The innermost one.
};

} // namespace Host
