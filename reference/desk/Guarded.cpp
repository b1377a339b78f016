#include "reference/desk/Guarded.h"

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IUserInterface.h"

#include <exception>

namespace Host {

bool Guarded(IUserInterface& ui, const std::function<void()>& work)
{
    try {
        work();
        return true;
    } catch (const Exception& exception) {
        ui.ShowError(exception.GetErrorText());
    } catch (const std::exception& exception) {
        ui.ShowError(QString::fromLocal8Bit(exception.what()));
    }
    return false;
}

} // namespace Host
