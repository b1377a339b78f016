#pragma once

#include <QElapsedTimer>
#include <QString>

namespace Host {

/// Tells which frame of a series is drawn, and how long all of them will still
/// take: "frame 2 of 8, 1:05 left".
///
/// The owner's thread.
class FrameClock {
public:
    explicit FrameClock(int nFrames);

    /// Ends a frame, if one is running, and begins the next.
    void NextFrame();

    /// Without a time as long as nothing tells how long a frame takes.
    /// \param nPercent of this frame, 0 to 100
    QString Text(int nPercent) const;

private:
    int m_nFrames;
    int m_nFrame = 0;                  ///< Counted from 1.
    unsigned long long m_finished = 0; ///< Milliseconds of the frames before.
    QElapsedTimer m_frame;
};

/// A duration as people read it: "0:07", "1:05", "2:03:00"; a begun second counts.
QString DurationText(unsigned long long milliseconds);

} // namespace Host
