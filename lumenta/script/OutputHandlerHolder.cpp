#include "lumenta/script/OutputHandlerHolder.h"

#include "lumenta/platform/IScriptRunner.h"

OutputHandlerHolder::OutputHandlerHolder(IScriptRunner& runner, IScriptRunnerOutput& output)
    : m_runner(runner)
    , m_output(output)
{
    m_runner.AddOutput(m_output);
}

OutputHandlerHolder::~OutputHandlerHolder() noexcept
{
    m_runner.RemoveOutput(m_output);
}
