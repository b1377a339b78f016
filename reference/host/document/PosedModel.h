#pragma once

#include "lumenta/platform/IMeshNodeBuilder.h"
#include "lumenta/skin/Scene.h"
#include "reference/host/Stopwatch.h"
#include "reference/host/document/Node.h"

#include <QPointer>

#include <memory>
#include <vector>

namespace Host {

/// A model that hangs in a scene: what poses its meshes.
class PosedModel {
public:
    /// \param scene at rest, not null
    explicit PosedModel(std::unique_ptr<SkinAnimation::Scene> scene);

    const std::vector<SkinAnimation::Animation*>& GetAnimations() const { return m_scene->animations; }

    /// Hands every visible mesh to `builder`, always the same ones in the same order.
    /// \param nAnimation −1 for the model at rest
    /// \param pStopwatch may be null
    void Pose(int nAnimation, float time, IMeshNodeBuilder& builder, Stopwatch* pStopwatch);

    /// Where a posed mesh goes.
    struct Part {
        QPointer<MeshNode> pNode; ///< Null when it is gone, and the mesh with it.
        Mesh* pMesh;
    };

    Node* pAnchor = nullptr; ///< The group that the model came with.
    std::vector<Part> parts; ///< In the order of Pose().

private:
    std::unique_ptr<SkinAnimation::Scene> m_scene;
    std::vector<Matrix> m_rest; ///< Local transforms, parallel to the scene's nodes.
};

} // namespace Host
