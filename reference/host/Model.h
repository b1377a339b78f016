#pragma once

#include "lumenta/skin/Scene.h"

#include <QImage>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>
#include <vector>

namespace Host {

/// A material as its file describes it.
///
/// Parameters, each present only where the file has it: "diffuse", "specular",
/// "ambient" and "emissive" (QColor), "opacity" (double, 1 is opaque; left out
/// where the file says 0, since exporters disagree about which end is opaque),
/// "shininess" (double, the Phong exponent), "twoSided" (bool), and "texture"
/// (QString, the path of the colour texture as the file spells it, or the name
/// of an embedded one).
struct Material {
    QString name;
    QMap<QString, QVariant> parameters;
};

/// A model in memory: a skinned scene in its rest pose, and what its file says
/// beside it. Geometries in the scene carry copies of their material's name and
/// parameters.
///
/// Positions are in the file's unit, right-handed; times are milliseconds.
/// The corners of a triangle run clockwise as seen from outside: that way round
/// SkinAnimation::Geometry::CollectNormals() makes normals that face outwards.
/// Texture coordinates have their origin top left, as images do.
struct Model {
    QString fileName; ///< As it was given; empty for a model made by the program.
    TVec3<float> up{0.0f, 1.0f, 0.0f};
    std::unique_ptr<SkinAnimation::Scene> scene;
    std::vector<Material> materials;
    QMap<QString, QImage> embeddedImages; ///< By the name that "texture" uses.
    QStringList warnings; ///< What could not be taken over, in words for a person.
};

} // namespace Host
