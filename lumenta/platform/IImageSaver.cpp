#include "lumenta/platform/IImageSaver.h"

IImageSaver::~IImageSaver() = default;
