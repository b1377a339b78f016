#pragma once

#include "lumenta/Export.h"

class IScriptRunner;
class IScriptRunnerOutput;

/// Lets `output` receive what scripts print, as long as the holder lives. Put it
/// on the stack around a run: it lets go also where the run throws.
///
/// Runner and output must outlive it. A runner knows each output once, so of two
/// holders for the same pair the one that ends first ends it for both. On the
/// runner's thread.
class LUMENTA_EXPORT OutputHandlerHolder {
public:
    /// Adds the output to the runner.
    OutputHandlerHolder(IScriptRunner& runner, IScriptRunnerOutput& output);

    /// A runner that throws when the output is removed ends the program.
    ~OutputHandlerHolder() noexcept;

    OutputHandlerHolder(const OutputHandlerHolder&) = delete;
    OutputHandlerHolder& operator=(const OutputHandlerHolder&) = delete;

private:
    IScriptRunner& m_runner;
    IScriptRunnerOutput& m_output;
};
