#include "lumenta/interfaces/IRender.h"

IRender::~IRender() = default;
