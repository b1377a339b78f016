#include "lumenta/interfaces/INode.h"

INode::~INode() = default;
