#pragma once

#include "lumenta/foundation/MeshVertex.h"

#include <QMap>
#include <QString>
#include <QVariant>

#include <functional>
#include <vector>

namespace Host {

/// A mesh as IMeshNodeBuilder::AddMeshNode() takes it.
struct ShapeMesh {
    QString name;
    std::vector<MeshVertex> vertices;
    std::vector<unsigned int> indices;
    QString materialName;
    QMap<QString, QVariant> materialParameters;
};

/// A corner of a grid; the rest of the tangent frame follows from these.
struct GridPoint {
    TVec3<double> position;
    TVec3<double> normal;    ///< Outwards; unit.
    TVec3<double> direction; ///< In which u grows; any length, not along the normal.
    TVec2<double> texCoord;
};

/// Adds a patch of nRows × nColumns corners, at least two of either. Seen from
/// outside, columns run to the right and rows down; triangles run clockwise.
/// Those with two corners in one place are left out, and corners that no
/// triangle is left of.
void AddGrid(ShapeMesh& mesh, unsigned int nRows, unsigned int nColumns,
             const std::function<GridPoint(unsigned int nRow, unsigned int nColumn)>& pointAt);

/// A point of the outline that a lathe turns about the z axis.
struct ProfilePoint {
    double radius;
    double z;
    double normalRadius; ///< With normalZ the outward normal, unit.
    double normalZ;
};

/// One smooth stretch of an outline. Where two stretches meet there is an edge,
/// or nothing to be seen if their normals agree.
using Profile = std::vector<ProfilePoint>;

/// Where the columns of something turned stand. Angles run as the camera's
/// heading does; the first column closes the circle bit by bit.
struct Turning {
    unsigned int nSegments;
    double startDegrees;

    double Degrees(double nColumn) const { return startDegrees + 360.0 / nSegments * nColumn; }
    /// Unit, from the axis outwards.
    TVec3<double> Outwards(double nColumn) const;
};

/// Turns an outline that begins and ends on the axis. It runs so that its
/// outside is at the right hand, with the radius to the right and z up: a ball
/// from its bottom to its top.
///
/// u grows with the angle, from 0 to 1. v is 0 at the outline's end and 1 at its
/// beginning, by length.
void AddTurned(ShapeMesh& mesh, const std::vector<Profile>& stretches, const Turning& turning);

} // namespace Host
