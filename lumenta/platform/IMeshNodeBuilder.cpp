#include "lumenta/platform/IMeshNodeBuilder.h"

IMeshNodeBuilder::~IMeshNodeBuilder() = default;
