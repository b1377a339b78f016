#pragma once

#include <functional>

class IUserInterface;

namespace Host {

/// Does what a hand asked for. What it throws is shown as an error and goes no
/// further: the toolkit's event loop is no place for it.
/// \return whether nothing was thrown
bool Guarded(IUserInterface& ui, const std::function<void()>& work);

} // namespace Host
