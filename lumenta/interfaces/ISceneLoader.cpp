#include "lumenta/interfaces/ISceneLoader.h"

ISceneLoader::~ISceneLoader() = default;
