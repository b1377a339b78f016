#include "reference/plugins/assimp-loader/TrackReader.h"

#include "lumenta/skin/Scene.h"
#include "reference/plugins/assimp-loader/Report.h"

#include <assimp/anim.h>
#include <assimp/scene.h>

#include <algorithm>
#include <cstring>
#include <map>

namespace Host {

namespace {

template <typename Value>
struct Timed {
    double ticks;
    Value value;
};

template <typename Value>
using Curve = std::vector<Timed<Value>>;

/// Two keys of one time have one value on either side of it.
enum class Side { Before, After };

WideVector Widen(const aiVector3D& v)
{
    return {static_cast<double>(v.x), static_cast<double>(v.y), static_cast<double>(v.z)};
}

WideQuaternion Widen(const aiQuaternion& q)
{
    return {static_cast<double>(q.w), static_cast<double>(q.x), static_cast<double>(q.y), static_cast<double>(q.z)};
}

double Dot(const WideQuaternion& a, const WideQuaternion& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w;
}

WideQuaternion Combine(const WideQuaternion& a, double weightA, const WideQuaternion& b, double weightB)
{
    return {a.w * weightA + b.w * weightB, a.x * weightA + b.x * weightB, a.y * weightA + b.y * weightB,
            a.z * weightA + b.z * weightB};
}

/// Makes a key's value usable; false where it cannot be.
bool Tidy(WideVector& v)
{
    return IsFinite(v);
}

bool Tidy(WideQuaternion& q)
{
    const double length = std::sqrt(Dot(q, q));
    if (!std::isfinite(length) || length == 0.0)
        return false;
    q = Combine(q, 1.0 / length, q, 0.0);
    return true;
}

WideVector Blend(const WideVector& a, const WideVector& b, double factor)
{
    return a + (b - a) * factor;
}

/// Along the shorter arc, as posing does it.
WideQuaternion Blend(const WideQuaternion& a, const WideQuaternion& b, double factor)
{
    const double cosine = Dot(a, b);
    const double angle = std::acos(std::min(std::fabs(cosine), 1.0));
    const double sine = std::sin(angle);
    const bool isTiny = sine < 1e-9;
    const double weightA = isTiny ? 1.0 - factor : std::sin((1.0 - factor) * angle) / sine;
    const double weightB = isTiny ? factor : std::sin(factor * angle) / sine;
    return Combine(a, weightA, b, cosine < 0.0 ? -weightB : weightB);
}

template <typename Value>
Value ValueAt(const Curve<Value>& curve, double ticks, Side side)
{
    const auto lower = std::partition_point(curve.begin(), curve.end(), [&](const auto& k) { return k.ticks < ticks; });
    const auto upper = std::partition_point(lower, curve.end(), [&](const auto& k) { return k.ticks <= ticks; });
    if (lower != upper)
        return side == Side::Before ? lower->value : std::prev(upper)->value;
    if (lower == curve.begin())
        return lower->value;
    const auto before = std::prev(lower);
    if (lower == curve.end())
        return before->value;
    return Blend(before->value, lower->value, (ticks - before->ticks) / (lower->ticks - before->ticks));
}

class ChannelReader {
public:
    ChannelReader(double ticksPerSecond, Report& report)
        : m_ticksPerSecond(ticksPerSecond)
        , m_report(report)
    {
    }

    std::vector<SkinAnimation::KeyFrame> Read(const aiNodeAnim& channel, const aiNode& node);

    double Milliseconds(double ticks) const { return ticks * 1000.0 / m_ticksPerSecond; }

private:
    struct Curves {
        Curve<WideVector> positions;
        Curve<WideQuaternion> rotations;
        Curve<WideVector> scalings;
    };

    template <typename Value, typename Key>
    Curve<Value> ReadCurve(const Key* keys, unsigned int count, const aiString& name);
    SkinAnimation::KeyFrame KeyAt(const Curves& curves, double ticks, Side side) const;

    double m_ticksPerSecond;
    Report& m_report;
};

template <typename Value, typename Key>
Curve<Value> ChannelReader::ReadCurve(const Key* keys, unsigned int count, const aiString& name)
{
    Curve<Value> curve;
    curve.reserve(count);
    for (unsigned int i = 0; i < count; ++i) {
        Timed<Value> key{keys[i].mTime, Widen(keys[i].mValue)};
        if (std::fabs(Milliseconds(key.ticks)) <= kLargestFloat && Tidy(key.value))
            curve.push_back(key);
        else
            m_report.Warn(QStringLiteral("The animation of '%1' has keys that are not finite; they were left out.")
                              .arg(ToText(name)));
    }
    std::stable_sort(curve.begin(), curve.end(), [](const auto& a, const auto& b) { return a.ticks < b.ticks; });
    return curve;
}

SkinAnimation::KeyFrame ChannelReader::KeyAt(const Curves& curves, double ticks, Side side) const
{
    const WideVector position = ValueAt(curves.positions, ticks, side);
    const WideQuaternion rotation = ValueAt(curves.rotations, ticks, side);
    const WideVector scaling = ValueAt(curves.scalings, ticks, side);
    return {ToFloat(Milliseconds(ticks)),
            {ToFloat(position.x), ToFloat(position.y), ToFloat(position.z)},
            {ToFloat(rotation.x), ToFloat(rotation.y), ToFloat(rotation.z), ToFloat(rotation.w)},
            {ToFloat(scaling.x), ToFloat(scaling.y), ToFloat(scaling.z)}};
}

template <typename Value>
void AddTimes(const Curve<Value>& curve, std::vector<double>& times)
{
    for (const Timed<Value>& key : curve)
        times.push_back(key.ticks);
}

/// The one value of a curve that the file does not have.
template <typename Value>
void HoldWhereEmpty(Curve<Value>& curve, const Value& value, double ticks)
{
    if (curve.empty())
        curve.push_back({ticks, value});
}

std::vector<SkinAnimation::KeyFrame> ChannelReader::Read(const aiNodeAnim& channel, const aiNode& node)
{
    Curves curves{ReadCurve<WideVector>(channel.mPositionKeys, channel.mNumPositionKeys, channel.mNodeName),
                  ReadCurve<WideQuaternion>(channel.mRotationKeys, channel.mNumRotationKeys, channel.mNodeName),
                  ReadCurve<WideVector>(channel.mScalingKeys, channel.mNumScalingKeys, channel.mNodeName)};
    std::vector<double> times;
    AddTimes(curves.positions, times);
    AddTimes(curves.rotations, times);
    AddTimes(curves.scalings, times);
    if (times.empty())
        return {};
    std::sort(times.begin(), times.end());
    times.erase(std::unique(times.begin(), times.end()), times.end());

    WideVector position, scaling;
    WideQuaternion rotation;
    Host::Widen(node.mTransformation).Decompose(scaling, rotation, position);
    HoldWhereEmpty(curves.positions, position, times.front());
    HoldWhereEmpty(curves.rotations, Tidy(rotation) ? rotation : WideQuaternion(), times.front());
    HoldWhereEmpty(curves.scalings, scaling, times.front());

    std::vector<SkinAnimation::KeyFrame> keys;
    for (const double ticks : times) {
        const SkinAnimation::KeyFrame before = KeyAt(curves, ticks, Side::Before);
        const SkinAnimation::KeyFrame after = KeyAt(curves, ticks, Side::After);
        if (std::memcmp(&before, &after, sizeof before) != 0)
            keys.push_back(before);
        keys.push_back(after);
    }
    return keys;
}

/// Which node each channel moves; none where no node is left of its name.
std::vector<const NodeTable::Entry*> MatchNodes(const aiAnimation& source, const NodeTable& nodes,
                                                const std::set<std::size_t>& bones, Report& report)
{
    std::map<std::string, std::vector<unsigned int>> channelsOfName;
    for (unsigned int i = 0; i < source.mNumChannels; ++i) {
        const aiString& name = source.mChannels[i]->mNodeName;
        channelsOfName[{name.data, name.length}].push_back(i);
    }

    std::vector<const NodeTable::Entry*> matches(source.mNumChannels, nullptr);
    for (const auto& [key, channels] : channelsOfName) {
        const aiString& name = source.mChannels[channels.front()]->mNodeName;
        std::vector<std::size_t> candidates = nodes.Named(name);
        if (candidates.size() > 1)
            report.Warn(QStringLiteral("%1 nodes are named '%2'; their animation may have been given to the wrong one.")
                            .arg(candidates.size()).arg(ToText(name)));
        if (channels.size() > candidates.size())
            report.Warn(QStringLiteral("The animation of '%1' moves no node and was left out.").arg(ToText(name)));
        if (channels.size() < candidates.size())
            std::stable_partition(candidates.begin(), candidates.end(),
                                  [&](std::size_t candidate) { return bones.count(candidate) > 0; });
        for (std::size_t k = 0; k < std::min(channels.size(), candidates.size()); ++k)
            matches[channels[k]] = &nodes[candidates[k]];
    }
    return matches;
}

bool TellsTicksPerSecond(const aiAnimation& source)
{
    return std::isfinite(source.mTicksPerSecond) && source.mTicksPerSecond > 0.0;
}

} // namespace

std::unique_ptr<SkinAnimation::Animation> ReadAnimation(const aiAnimation& source, double ticksPerSecond,
                                                        const NodeTable& nodes, const std::set<std::size_t>& bones,
                                                        Report& report)
{
    auto animation = std::make_unique<SkinAnimation::Animation>();
    animation->name = ToText(source.mName);
    ChannelReader reader(TellsTicksPerSecond(source) ? source.mTicksPerSecond : ticksPerSecond, report);
    SkinAnimation::AnimationLayer layer;
    layer.name = animation->name;
    if (std::isfinite(source.mDuration))
        layer.duration = std::max(0.0f, ToFloat(reader.Milliseconds(source.mDuration)));

    const std::vector<const NodeTable::Entry*> matches = MatchNodes(source, nodes, bones, report);
    for (unsigned int i = 0; i < source.mNumChannels; ++i) {
        if (!matches[i])
            continue;
        SkinAnimation::NodeTrack track{matches[i]->node, reader.Read(*source.mChannels[i], *matches[i]->source)};
        if (track.keys.empty())
            continue;
        layer.duration = std::max(layer.duration, track.keys.back().time);
        layer.tracks.push_back(std::move(track));
    }
    animation->duration = layer.duration;
    animation->layers.push_back(std::move(layer));
    if (source.mNumMeshChannels > 0 || source.mNumMorphMeshChannels > 0)
        report.Warn(
            QStringLiteral("Animation '%1' changes the shape of meshes; only the motion of nodes was taken over.")
                .arg(animation->name));
    return animation;
}

} // namespace Host
