#pragma once

#include "lumenta/interfaces/INode.h"

namespace Host {

/// "group", "mesh", "light"; "other" for kinds that only another host has.
inline QString NodeKind(const INode& node)
{
    switch (node.GetType()) {
    case eNodeTypeGroup:
        return QStringLiteral("group");
    case eNodeTypeMesh:
        return QStringLiteral("mesh");
    case eNodeTypeLight:
        return QStringLiteral("light");
    default:
        return QStringLiteral("other");
    }
}

} // namespace Host
