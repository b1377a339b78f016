#include "lumenta/platform/IFileSource.h"

IFileSource::~IFileSource() = default;
