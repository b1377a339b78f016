#include "reference/host/document/PosedModel.h"

#include <utility>

namespace Host {

PosedModel::PosedModel(std::unique_ptr<SkinAnimation::Scene> scene)
    : m_scene(std::move(scene))
{
}

void PosedModel::Pose(int nAnimation, float time, IMeshNodeBuilder& builder)
{
    if (nAnimation < 0) {
        // An animation that moves nothing brings everything back to rest.
        SkinAnimation::Animation rest;
        rest.layers.resize(1);
        std::vector<SkinAnimation::Animation*> onlyRest{&rest};
        m_scene->animations.swap(onlyRest);
        m_scene->CalculateAnimation(0, 0.0f);
        m_scene->animations.swap(onlyRest);
    } else {
        m_scene->CalculateAnimation(nAnimation, time);
    }
    builder.BeginModel(QString(), m_scene->nodes.size());
    m_scene->CreateMeshes(builder);
    builder.EndModel();
}

} // namespace Host
