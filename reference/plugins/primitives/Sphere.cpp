#include "reference/plugins/primitives/Shapes.h"

#include <cmath>

namespace Host {

namespace {

constexpr double kPi = 3.14159265358979323846;

/// Its image begins at the back, so that the middle of it is in front.
constexpr double kBack = 90.0;

std::vector<ShapeMesh> MakeSphere(const ShapeValues& values)
{
    const double radius = NumberIn(values, "radius");
    const unsigned int nRings = CountIn(values, "rings");
    Profile outline{{0.0, 0.0, 0.0, -1.0}};
    for (unsigned int i = 1; i < nRings; ++i) {
        const double angle = kPi * i / nRings;
        const double outwards = std::sin(angle), up = -std::cos(angle);
        outline.push_back({radius * outwards, radius + radius * up, outwards, up});
    }
    outline.push_back({0.0, 2.0 * radius, 0.0, 1.0});

    ShapeMesh mesh;
    mesh.name = QStringLiteral("sphere");
    AddTurned(mesh, {outline}, {CountIn(values, "segments"), kBack});
    return {mesh};
}

} // namespace

Shape SphereShape()
{
    const QString radius = QStringLiteral("radius");
    return {QStringLiteral("Sphere"),
            {{radius, QStringLiteral("Radius"), 0.05, 0.0005, 50.0},
             {QStringLiteral("segments"), QStringLiteral("Segments around"), 48, 3, 512},
             {QStringLiteral("rings"), QStringLiteral("Rings from pole to pole"), 24, 2, 256}},
            {{QStringLiteral("Ball"), {{radius, 0.11}}}, {QStringLiteral("Marble"), {{radius, 0.008}}}},
            MakeSphere};
}

} // namespace Host
