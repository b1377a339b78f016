#include "lumenta/interfaces/IImageManager.h"

IImageManager::~IImageManager() = default;
