#include "lumenta/interfaces/IFreeCamera.h"

IFreeCamera::~IFreeCamera() = default;
