#pragma once

#include "lumenta/Export.h"

#include <QString>

/// Receives what scripts print.
///
/// **Who implements it:** whoever shows it. **Who calls it:** an IScriptRunner, on
/// the thread that runs the script. **Ownership:** stays with who made it.
/// **Errors:** none may be thrown: a script engine is in between.
class LUMENTA_EXPORT IScriptRunnerOutput {
public:
    /// \param strText as printed, line ends included: receivers add none
    virtual void OnOutput(const QString& strText) = 0;

    /// A script has failed.
    /// \param nLine counted from 1
    virtual void OnError(const QString& strText, const QString& strFileName, int nLine) = 0;

protected:
    IScriptRunnerOutput() = default;
    IScriptRunnerOutput(const IScriptRunnerOutput&) = default;
    IScriptRunnerOutput& operator=(const IScriptRunnerOutput&) = default;
    ~IScriptRunnerOutput() = default;
};
