#include "reference/host/document/PosedModel.h"

#include <utility>

namespace Host {

PosedModel::PosedModel(std::unique_ptr<SkinAnimation::Scene> scene)
    : m_scene(std::move(scene))
{
    for (const SkinAnimation::Node* pNode : m_scene->nodes)
        m_rest.push_back(pNode->localTransform);
}

void PosedModel::Pose(int nAnimation, float time, IMeshNodeBuilder& builder, Stopwatch* pStopwatch)
{
    const Timed timed(pStopwatch, eStagePose);
    // An animation leaves nodes that it doesn't move where the one before has left them.
    for (std::size_t i = 0; i < m_rest.size(); ++i)
        m_scene->nodes[i]->localTransform = m_rest[i];
    if (nAnimation < 0) {
        SkinAnimation::Animation rest;
        rest.layers.resize(1);
        std::vector<SkinAnimation::Animation*> onlyRest{&rest};
        m_scene->animations.swap(onlyRest);
        m_scene->CalculateAnimation(0, 0.0f);
        m_scene->animations.swap(onlyRest);
    } else {
        m_scene->CalculateAnimation(nAnimation, time);
    }
    const Timed handingOver(pStopwatch, eStageMeshes);
    builder.BeginModel(QString(), m_scene->nodes.size());
    m_scene->CreateMeshes(builder);
    builder.EndModel();
}

} // namespace Host
