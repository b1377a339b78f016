#pragma once

// Private to the loader: animations.

#include "reference/plugins/assimp-loader/NodeTable.h"

#include <memory>
#include <set>

struct aiAnimation;

namespace SkinAnimation {
struct Animation;
} // namespace SkinAnimation

namespace Host {

class Report;

/// One animation with one layer, times in milliseconds; a file that does not
/// say how long a tick takes means `ticksPerSecond`. It lasts as long as the file
/// says, but at least to its last key.
///
/// The file keys position, rotation and scaling at times of their own; a track
/// has keys at all of these times, and between them runs as the file's do.
/// Two keys of one time are a jump. What a channel does not key, the node's
/// own transform gives.
/// \param bones nodes that move vertices: where a channel's name is not unique
///              and there are fewer channels than nodes, these come first
std::unique_ptr<SkinAnimation::Animation> ReadAnimation(const aiAnimation& source, double ticksPerSecond,
                                                        const NodeTable& nodes, const std::set<std::size_t>& bones,
                                                        Report& report);

} // namespace Host
