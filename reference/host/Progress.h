#pragma once

#include <functional>

namespace Host {

/// Told how far a long piece of work is, 0 to 100, on the caller's thread.
/// May be empty.
using Progress = std::function<void(int nPercent)>;

} // namespace Host
