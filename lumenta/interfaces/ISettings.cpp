#include "lumenta/interfaces/ISettings.h"

ISettings::~ISettings() = default;
