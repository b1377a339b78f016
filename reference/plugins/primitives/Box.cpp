#include "reference/plugins/primitives/Shapes.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Host {

namespace {

constexpr double kQuarterOfPi = 3.14159265358979323846 / 4.0;

struct Box {
    std::array<double, 3> low;
    std::array<double, 3> high;
    double bevel;
    /// Components of the direction in which the bevel's ball is left, from that
    /// of one edge's middle to that of the other: −1 … 0, 0 … 1.
    std::vector<double> steps;

    std::size_t Count() const { return steps.size(); }
    bool IsHigh(std::size_t nStep) const { return nStep >= steps.size() / 2; }
};

/// How a side is seen from outside: axes 0, 1, 2 with their signs.
struct Side {
    int normal, normalSign;
    int right, rightSign;
    int up;
};

constexpr Side kSides[] = {
    {1, -1, 0, 1, 2},  // front
    {0, 1, 1, 1, 2},   // right
    {1, 1, 0, -1, 2},  // back
    {0, -1, 1, -1, 2}, // left
    {2, 1, 0, 1, 1},   // top
    {2, -1, 0, -1, 1}, // bottom
};

using Triple = std::array<double, 3>;

TVec3<double> ToVector(const Triple& triple)
{
    return {triple[0], triple[1], triple[2]};
}

/// Steps of equal angles, so that bevels of neighbouring sides are alike.
std::vector<double> StepsOf(unsigned int nSegments)
{
    std::vector<double> steps;
    for (unsigned int i = nSegments; i > 0; --i)
        steps.push_back(i == nSegments ? -1.0 : -std::tan(kQuarterOfPi * i / nSegments));
    steps.insert(steps.end(), {0.0, 0.0});
    for (std::size_t i = nSegments; i > 0; --i)
        steps.push_back(-steps[i - 1]);
    return steps;
}

/// Neighbouring sides come to the same bits along their common edge: the
/// direction's length is summed in the order of the axes, whichever side asks.
GridPoint PointOf(const Box& box, const Side& side, std::size_t nRight, std::size_t nUp)
{
    const auto right = static_cast<std::size_t>(side.right), up = static_cast<std::size_t>(side.up),
               normal = static_cast<std::size_t>(side.normal);
    std::array<bool, 3> isHigh{};
    isHigh[normal] = side.normalSign > 0;
    isHigh[right] = box.IsHigh(nRight);
    isHigh[up] = box.IsHigh(nUp);

    Triple direction{}, position{}, growing{};
    direction[normal] = side.normalSign;
    direction[right] = box.steps[nRight];
    direction[up] = box.steps[nUp];
    growing[right] = side.rightSign;
    const double length =
        std::sqrt(direction[0] * direction[0] + direction[1] * direction[1] + direction[2] * direction[2]);
    for (std::size_t i = 0; i < 3; ++i) {
        direction[i] /= length;
        position[i] = isHigh[i] ? box.high[i] - (box.bevel - box.bevel * direction[i])
                                : box.low[i] + (box.bevel + box.bevel * direction[i]);
    }
    const auto part = [&](std::size_t axis) {
        return (position[axis] - box.low[axis]) / (box.high[axis] - box.low[axis]);
    };
    const double u = side.rightSign > 0 ? part(right) : 1.0 - part(right);
    return {ToVector(position), ToVector(direction), ToVector(growing), {u, 1.0 - part(up)}};
}

std::vector<ShapeMesh> MakeBox(const ShapeValues& values)
{
    const double width = NumberIn(values, "width"), depth = NumberIn(values, "depth"),
                 height = NumberIn(values, "height");
    const Box box{{-width / 2.0, -depth / 2.0, 0.0},
                  {width / 2.0, depth / 2.0, height},
                  std::min(NumberIn(values, "bevel"), std::min({width, depth, height}) / 2.0),
                  StepsOf(CountIn(values, "segments"))};
    ShapeMesh mesh;
    mesh.name = QStringLiteral("box");
    const auto nSteps = static_cast<unsigned int>(box.Count());
    for (const Side& side : kSides)
        AddGrid(mesh, nSteps, nSteps, [&](unsigned int row, unsigned int column) {
            const std::size_t nRight = side.rightSign > 0 ? column : nSteps - 1 - column;
            return PointOf(box, side, nRight, nSteps - 1 - row);
        });
    return {mesh};
}

ShapeValues BoxOf(double width, double depth, double height, double bevel)
{
    return {{QStringLiteral("width"), width},
            {QStringLiteral("depth"), depth},
            {QStringLiteral("height"), height},
            {QStringLiteral("bevel"), bevel}};
}

} // namespace

Shape BoxShape()
{
    return {QStringLiteral("Box"),
            {{QStringLiteral("width"), QStringLiteral("Width"), 0.1, 0.001, 100.0},
             {QStringLiteral("depth"), QStringLiteral("Depth"), 0.1, 0.001, 100.0},
             {QStringLiteral("height"), QStringLiteral("Height"), 0.1, 0.001, 100.0},
             {QStringLiteral("bevel"), QStringLiteral("Radius of the edges"), 0.0, 0.0, 50.0},
             {QStringLiteral("segments"), QStringLiteral("Segments from a side to its edge"), 3, 1, 32}},
            {{QStringLiteral("Cube"), BoxOf(0.1, 0.1, 0.1, 0.0)},
             {QStringLiteral("Tile"), BoxOf(0.2, 0.2, 0.01, 0.001)},
             {QStringLiteral("Carton"), BoxOf(0.19, 0.07, 0.28, 0.0015)}},
            MakeBox};
}

} // namespace Host
