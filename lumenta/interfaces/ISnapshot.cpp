#include "lumenta/interfaces/ISnapshot.h"

ISnapshot::~ISnapshot() = default;
