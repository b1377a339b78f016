#include "lumenta/interfaces/ISceneSaver.h"

ISceneSaver::~ISceneSaver() = default;
