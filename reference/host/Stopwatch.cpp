#include "reference/host/Stopwatch.h"

namespace Host {

std::array<qint64, eStageCount> Stopwatch::GetTimes()
{
    Begin(m_stage);
    return m_times;
}

eStage Stopwatch::Begin(eStage stage)
{
    m_times[m_stage] += m_timer.nsecsElapsed();
    m_timer.start();
    const eStage before = m_stage;
    m_stage = stage;
    return before;
}

} // namespace Host
