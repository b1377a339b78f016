#pragma once

#include "lumenta/platform/IMeshNodeBuilder.h"

namespace Bench {

/// Is handed meshes and leaves them alone.
struct IdleBuilder final : IMeshNodeBuilder {
    void BeginModel(const QString&, std::size_t) override {}
    void EndModel() override {}
    void AddMeshNode(const QString&, std::vector<MeshVertex>&, std::vector<unsigned int>&, const QString&,
                     const QMap<QString, QVariant>&) override
    {
    }
};

} // namespace Bench
