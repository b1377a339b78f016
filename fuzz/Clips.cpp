#include "benchmarks/NaiveSkin.h"
#include "fuzz/Levels.h"
#include "fuzz/Skeleton.h"
#include "lumenta/skin/SkinKernels.h"

// Clips of any range, turned round, empty or no numbers: what is cut out can be
// played, and lies within the range where there is one.

using namespace SkinAnimation;
using Fuzz::Require;

namespace {

void RequireWithin(const Animation& clip, float start, float end)
{
    float last = 0.0f;
    for (const NodeTrack& track : clip.layers[0].tracks) {
        for (std::size_t i = 0; i < track.keys.size(); ++i) {
            const float time = track.keys[i].time;
            if (std::isnan(time)) return; // infinity from infinity
            Require(time >= 0.0f && time <= end - start, "a key lies within its clip");
            Require(i == 0 || time >= track.keys[i - 1].time, "keys of a clip ascend");
        }
        if (!track.keys.empty()) last = std::max(last, track.keys.back().time);
    }
    Require(clip.duration == last, "a clip is as long as its keys");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::Input input(data, size);
    const float start = input.Float(), end = input.Float(), time = input.Float();
    Fuzz::Input again = input;
    const auto ours = Fuzz::Skeleton(input);
    const auto plain = Fuzz::Skeleton(again);
    const std::vector<NodeTrack>& tracks = ours->animations[0]->layers[0].tracks;
    const std::size_t nTracks = tracks.size();
    for (const auto& scene : {ours.get(), plain.get()})
        scene->AppendClippedAnimation(0, QStringLiteral("clip"), start, end);

    const Animation& clip = *ours->animations[1];
    Require(ours->animations.size() == 2 && clip.layers.size() == 1, "a clip has the layers of its source");
    Require(clip.layers[0].tracks.size() <= nTracks, "a clip has no more tracks than its source");
    Require(clip.duration >= 0.0f && clip.duration == clip.layers[0].duration, "a clip lasts as long as its layer");
    if (start <= end) RequireWithin(clip, start, end);

    for (const Kernels::Table* const level : Fuzz::Levels())
        for (const float moment : {time, 0.0f, clip.duration}) {
            PoseNodes(*level, clip.layers[0].tracks, moment, ours->nodes);
            Naive::CalculateAnimation(*plain, *plain->animations[1], moment);
            Require(Fuzz::SamePose(*ours, *plain), "clips play the same");
        }
    return 0;
}
