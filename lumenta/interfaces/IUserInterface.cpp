#include "lumenta/interfaces/IUserInterface.h"

IUserInterface::~IUserInterface() = default;
