#pragma once

#include "lumenta/foundation/Vector.h"

#include <QString>

#include <vector>

namespace SkinAnimation {

struct Node;

/// A rotation as x, y, z, w. Nothing here normalises it.
struct Quaternion {
    float x;
    float y;
    float z;
    float w;
};

/// The transform of a node, relative to its parent, at one moment.
struct KeyFrame {
    float time; ///< In the unit of its animation; loaders here use milliseconds.
    TVec3<float> translation;
    Quaternion rotation;
    TVec3<float> scale;
};

static_assert(sizeof(KeyFrame) == 44, "eleven floats, so that long tracks stay compact");

/// The keys of one node, times ascending. Before the first key and after the
/// last the nearest key holds; nothing wraps.
struct NodeTrack {
    Node* node = nullptr; ///< Whom it moves; not owned. Null moves nobody.
    std::vector<KeyFrame> keys;
};

/// Tracks that play together.
struct AnimationLayer {
    QString name;
    float duration = 0.0f;
    std::vector<NodeTrack> tracks;
};

/// A named motion. Posing reads the first layer only; clipping keeps them all.
struct Animation {
    QString name;
    float duration = 0.0f; ///< In the unit of the key times.
    std::vector<AnimationLayer> layers;
};

} // namespace SkinAnimation
