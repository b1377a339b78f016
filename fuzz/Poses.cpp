#include "benchmarks/NaiveSkin.h"
#include "fuzz/Levels.h"
#include "fuzz/Skeleton.h"
#include "lumenta/skin/SkinKernels.h"

// Poses of any skeleton by any keys at any time: the plain definition's bits at
// each level. So do products and inverses of any matrices.

using Fuzz::Require;

namespace {

void CompareMatrices(const Kernels::Table& level, Fuzz::Input input)
{
    std::vector<Matrix> ours{Fuzz::Transform(input), Fuzz::Transform(input)};
    std::vector<Matrix> plain = ours;
    level.multiply(ours[0].m, ours[0].m, ours[1].m);
    Naive::Multiply(plain[0], plain[0], plain[1]);
    Require(Bench::SameBits(ours, plain), "products are the same");
    const bool isInverted = level.invert(ours[0].m, ours[1].m);
    Require(isInverted == Naive::Inverse(plain[0], plain[1]), "matrices have an inverse or none");
    Require(Bench::SameBits(ours, plain), "inverses are the same");
}

void ComparePoses(const Kernels::Table& level, Fuzz::Input input)
{
    Fuzz::Input again = input;
    const auto ours = Fuzz::Skeleton(input);
    const auto plain = Fuzz::Skeleton(again);
    // Children before parents, and some twice.
    for (int i = input.Below(4); i > 0; --i) {
        const auto from = input.Byte() % ours->nodes.size(), to = input.Byte() % ours->nodes.size();
        for (const auto& scene : {ours.get(), plain.get()})
            (i % 2 != 0 ? scene->nodes[to] : scene->nodes.emplace_back()) = scene->nodes[from];
    }
    for (int i = 0; i < 4; ++i) {
        const float time = input.Float();
        SkinAnimation::PoseNodes(level, ours->animations[0]->layers[0].tracks, time, ours->nodes);
        Naive::CalculateAnimation(*plain, *plain->animations[0], time);
        Require(Fuzz::SamePose(*ours, *plain), "poses are the same");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Fuzz::Input input(data, size);
    for (const Kernels::Table* const level : Fuzz::Levels()) {
        CompareMatrices(*level, input);
        ComparePoses(*level, input);
    }
    return 0;
}
