#include "reference/host/Caught.h"

#include "lumenta/foundation/Exceptions.h"

#include <exception>
#include <new>

namespace Host {

QString CaughtText()
{
    try {
        throw;
    } catch (const Exception& exception) {
        return exception.GetErrorText();
    } catch (const std::bad_alloc&) {
        return QStringLiteral("there is not enough memory");
    } catch (const std::exception& exception) {
        return QString::fromLocal8Bit(exception.what());
    } catch (...) {
        return QStringLiteral("something of an unknown class");
    }
}

void WarnOfReceiver(const char* strSignal) noexcept
{
    try {
        qWarning("A receiver of '%s' threw: %s", strSignal, qUtf8Printable(CaughtText()));
    } catch (...) {
        // There is no memory for the words either.
    }
}

} // namespace Host
