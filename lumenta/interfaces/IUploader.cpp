#include "lumenta/interfaces/IUploader.h"

#include "lumenta/foundation/Exceptions.h"

IUploader::~IUploader() = default;

void IUploader::SetPin(const QString&)
{
    throw Exception(QStringLiteral("Not implement"));
}
