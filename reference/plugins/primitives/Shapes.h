#pragma once

// What the generators make: numbers in, meshes out. Lengths are units of the
// scene, which are metres in a new one; everything stands on z = 0, around the z
// axis, with its front towards −y.

#include "lumenta/interfaces/IGenerator.h"
#include "reference/plugins/primitives/ShapeMesh.h"

namespace Host {

/// By the parameters' names; holds all of them, within their limits.
using ShapeValues = QMap<QString, QVariant>;

struct Shape {
    QString title;
    QList<sGeneratorParameter> parameters;
    QList<sGeneratorPreset> presets;
    std::vector<ShapeMesh> (*make)(const ShapeValues& values);
};

/// Six sides, each with an image of its own, edges sharp or rounded. A bevel
/// that the box has no room for is as large as there is room.
Shape BoxShape();

/// By degrees of longitude and latitude.
Shape SphereShape();

/// A turned bottle of glass with an inner wall: the mesh "glass", on request a
/// paper "label" around the front of its straight part, and a "cap" over its
/// mouth. The label's image covers its front from 0 to 1; it ends where segments
/// of the glass do, so that it lies flat on them. What does not fit together is
/// held smaller: the neck is no wider than the body, the wall leaves the neck
/// open, the label stays on the straight part.
Shape BottleShape();

inline double NumberIn(const ShapeValues& values, const char* name)
{
    return values.value(QLatin1String(name)).toDouble();
}

inline unsigned int CountIn(const ShapeValues& values, const char* name)
{
    return values.value(QLatin1String(name)).toUInt();
}

} // namespace Host
