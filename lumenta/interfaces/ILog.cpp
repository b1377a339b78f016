#include "lumenta/interfaces/ILog.h"

ILog::~ILog() = default;
