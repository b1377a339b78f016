#include "lumenta/interfaces/IImage.h"

IImage::~IImage() = default;
