#pragma once

#include "lumenta/foundation/Vector.h"

#include <QString>

#include <vector>

namespace SkinAnimation {

struct Node;

/// A rotation as x, y, z, w: a turn by an angle a about a unit axis n is
/// n · sin(a / 2) and cos(a / 2), right-handed. Nothing here normalises it.
struct Quaternion {
    float x; ///< Along x.
    float y; ///< Along y.
    float z; ///< Along z.
    float w; ///< The real part: 1 with the others 0 turns nothing.
};

/// The transform of a node, relative to its parent, at one moment.
struct KeyFrame {
    float time;               ///< In the unit of its animation; loaders here use milliseconds.
    TVec3<float> translation; ///< Applied last.
    Quaternion rotation;      ///< Applied between the two.
    TVec3<float> scale;       ///< Applied first.
};

static_assert(sizeof(KeyFrame) == 44, "eleven floats, so that long tracks stay compact");

/// The keys of one node, times ascending. Before the first key and after the
/// last the nearest key holds; nothing wraps.
struct NodeTrack {
    Node* node = nullptr;       ///< Whom it moves; not owned. Null moves nobody.
    std::vector<KeyFrame> keys; ///< None, or any number.
};

/// Tracks that play together.
struct AnimationLayer {
    QString name;                  ///< As the file has it.
    float duration = 0.0f;         ///< In the unit of the key times.
    std::vector<NodeTrack> tracks; ///< One a node; of several for one node the last counts.
};

/// A named motion. Posing reads the first layer only; clipping keeps them all.
struct Animation {
    QString name;                       ///< Shown to people; need not be unique.
    float duration = 0.0f;              ///< In the unit of the key times.
    std::vector<AnimationLayer> layers; ///< At least one, if it is to move something.
};

} // namespace SkinAnimation
