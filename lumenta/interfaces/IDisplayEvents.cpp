#include "lumenta/interfaces/IDisplayEvents.h"

IDisplayEvents::~IDisplayEvents() = default;
