#include "reference/tools/FrameClock.h"

#include "lumenta/render/RenderSizing.h"

namespace Host {

FrameClock::FrameClock(int nFrames)
    : m_nFrames(nFrames)
{
}

void FrameClock::NextFrame()
{
    if (m_nFrame++ > 0) m_finished += static_cast<unsigned long long>(m_frame.elapsed());
    m_frame.start();
}

QString FrameClock::Text(int nPercent) const
{
    const QString frame = QStringLiteral("frame %1 of %2").arg(m_nFrame).arg(m_nFrames);
    // For the first frame there would be a mere guess.
    if (nPercent < 1 && m_nFrame <= 1) return frame;
    const auto spent = static_cast<unsigned long long>(m_frame.elapsed());
    const unsigned long long left = GetRenderingTimes(m_finished, spent, m_nFrames, m_nFrame, nPercent).at(3);
    return QStringLiteral("%1, %2 left").arg(frame, DurationText(left));
}

QString DurationText(unsigned long long milliseconds)
{
    const unsigned long long seconds = milliseconds / 1000 + (milliseconds % 1000 > 0 ? 1 : 0);
    const auto twoDigits = [](unsigned long long number) {
        return QString::number(number).rightJustified(2, QLatin1Char('0'));
    };
    const QString tail = QLatin1Char(':') + twoDigits(seconds % 60);
    if (seconds < 3600) return QString::number(seconds / 60) + tail;
    return QStringLiteral("%1:%2%3").arg(seconds / 3600).arg(twoDigits(seconds / 60 % 60), tail);
}

} // namespace Host
