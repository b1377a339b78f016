#include "lumenta/interfaces/IModelLoader.h"

IModelLoader::~IModelLoader() = default;
