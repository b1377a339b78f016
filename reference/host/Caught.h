#pragma once

#include <QString>

namespace Host {

/// Inside of a handler: what was caught, in words for a person.
QString CaughtText();

/// Inside of a handler: warns that a receiver of the signal has thrown.
void WarnOfReceiver(const char* strSignal) noexcept;

/// Emits a signal to receivers that may throw, although they ought not to: the
/// toolkit leaves open what becomes of that. They can't undo what they hear of, and
/// others wait for their signals; so it goes no further than a warning. Receivers
/// of this one signal that were connected later don't hear it.
template <typename F>
void Tell(const char* strSignal, const F& emitSignal) noexcept
{
    try {
        emitSignal();
    } catch (...) {
        WarnOfReceiver(strSignal);
    }
}

} // namespace Host
