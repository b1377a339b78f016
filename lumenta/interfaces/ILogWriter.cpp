#include "lumenta/interfaces/ILogWriter.h"

ILogWriter::~ILogWriter() = default;
