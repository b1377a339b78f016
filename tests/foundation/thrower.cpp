// A library that knows the exception classes only through their public header,
// as a plug-in does, and throws them into whoever loaded it.

#include "lumenta/foundation/Exceptions.h"

#include <cstring>

extern "C" __attribute__((visibility("default"))) void ThrowByName(const char* className);

namespace {

template <typename Class, typename... Arguments>
void ThrowIf(const char* wanted, const char* className, const Arguments&... arguments)
{
    if (std::strcmp(wanted, className) == 0)
        throw Class(arguments...);
}

} // namespace

void ThrowByName(const char* className)
{
    const QString text = "text";
    ThrowIf<Exception>(className, "Exception", text);
    ThrowIf<ExporterException>(className, "ExporterException", text);
    ThrowIf<LoadingException>(className, "LoadingException", text);
    ThrowIf<SavingException>(className, "SavingException", text);
    ThrowIf<CastException>(className, "CastException", text);
    ThrowIf<ImageFormatException>(className, "ImageFormatException", text);
    ThrowIf<UnsupportedFormatException>(className, "UnsupportedFormatException", text);
    ThrowIf<LogicException>(className, "LogicException", text);
    ThrowIf<OutOfMemoryException>(className, "OutOfMemoryException", text);
    ThrowIf<FileException>(className, "FileException", "file", text);
    ThrowIf<FactoryException>(className, "FactoryException", text);
    ThrowIf<ObjectLoadingException>(className, "ObjectLoadingException", "object", text);
    ThrowIf<InvalidParameterException>(className, "InvalidParameterException", "method", "parameter", text);
}
