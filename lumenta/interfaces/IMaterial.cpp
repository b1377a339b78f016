#include "lumenta/interfaces/IMaterial.h"

IMaterial::~IMaterial() = default;
