#include "lumenta/interfaces/IPlugin.h"

IPlugin::~IPlugin() = default;
