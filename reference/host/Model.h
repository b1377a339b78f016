#pragma once

#include "lumenta/interfaces/IModelLoader.h"
#include "lumenta/skin/Scene.h"

#include <QImage>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>
#include <vector>

namespace Host {

using Material = sModelMaterial;

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
    float millimetersPerUnit = 0.0f; ///< Of positions; 0 where the file doesn't say.
    std::unique_ptr<SkinAnimation::Scene> scene;
    std::vector<Material> materials;
    QMap<QString, QImage> embeddedImages; ///< By the name that "texture" uses.
    QMap<QString, QVariant> metadata; ///< What the file says about itself.
    QStringList warnings; ///< What could not be taken over, in words for a person.
};

} // namespace Host
