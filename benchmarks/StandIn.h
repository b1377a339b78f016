#pragma once

#include <QtGlobal>

namespace StandIn {

/// What is not needed.
[[noreturn]] inline void No() { qFatal("a stand-in was asked for what it is not for"); }

} // namespace StandIn
