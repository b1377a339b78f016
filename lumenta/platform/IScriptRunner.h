#pragma once

#include "lumenta/Export.h"

#include <QString>

class IScriptRunnerOutput;

/// Runs scripts against a document.
///
/// **Who implements it:** the host. **Who calls it:** whoever has a script, and
/// the library's OutputHandlerHolder.
/// **Thread:** the document's. **Ownership:** the host's; receivers stay with
/// who made them.
class LUMENTA_EXPORT IScriptRunner {
public:
    /// From now on `output` receives what scripts print, behind those before it;
    /// once, however often it is added.
    virtual void AddOutput(IScriptRunnerOutput& output) = 0;

    /// Receivers that were never added are passed over. Throws nothing.
    virtual void RemoveOutput(IScriptRunnerOutput& output) = 0;

    /// Runs a program to its end. What goes wrong is told to the receivers.
    /// \param strFileName to be named in errors
    /// \return whether it ran without an error
    virtual bool Run(const QString& strProgram, const QString& strFileName) = 0;

protected:
    IScriptRunner() = default;
    IScriptRunner(const IScriptRunner&) = default;
    IScriptRunner& operator=(const IScriptRunner&) = default;
    ~IScriptRunner() = default;
};
