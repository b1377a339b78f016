#pragma once

#include "reference/host/document/Scene.h"

#include <memory>
#include <vector>

namespace Host {

/// Nodes on their way into a scene: all of them come in, or none does.
class Scene::Newcomers {
public:
    Newcomers(Scene& scene, Change& change);
    ~Newcomers();
    Newcomers(const Newcomers&) = delete;
    Newcomers& operator=(const Newcomers&) = delete;

    /// Takes the node over. Its parent's list is up to the caller.
    Node& Add(std::unique_ptr<Node> node, Node& parent);

    /// From here on they stay.
    void Hold() noexcept;

private:
    Scene& m_scene;
    Change& m_change;
    Notes m_notes;
    std::vector<const Node*> m_added;
    bool m_bHold = false;
};

} // namespace Host
