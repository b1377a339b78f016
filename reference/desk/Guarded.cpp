#include "reference/desk/Guarded.h"

#include "lumenta/interfaces/IUserInterface.h"
#include "reference/host/Caught.h"

namespace Host {

bool Guarded(IUserInterface& ui, const std::function<void()>& work)
{
    try {
        work();
        return true;
    } catch (...) {
        ui.ShowError(CaughtText());
    }
    return false;
}

} // namespace Host
