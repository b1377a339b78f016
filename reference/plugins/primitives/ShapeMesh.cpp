#include "reference/plugins/primitives/ShapeMesh.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Host {

namespace {

constexpr double kRadiansPerDegree = 3.14159265358979323846 / 180.0;
constexpr unsigned int kUnused = std::numeric_limits<unsigned int>::max();

TVec3<float> ToFloat(const TVec3<double>& v)
{
    return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}

/// v grows downwards where u grows to the right, as seen from outside.
MeshVertex VertexOf(const GridPoint& point)
{
    MeshVertex vertex;
    vertex.position = ToFloat(point.position);
    vertex.normal = Normalized(ToFloat(point.normal));
    const TVec3<float> direction = ToFloat(point.direction);
    vertex.tangent = Normalized(direction - vertex.normal * Dot(direction, vertex.normal));
    vertex.bitangent = Cross(vertex.tangent, vertex.normal);
    vertex.texCoord = {static_cast<float>(point.texCoord.x), static_cast<float>(point.texCoord.y)};
    vertex.handedness = -1.0f;
    return vertex;
}

double DistanceBetween(const ProfilePoint& a, const ProfilePoint& b)
{
    return std::hypot(b.radius - a.radius, b.z - a.z);
}

double LengthOf(const std::vector<Profile>& stretches)
{
    double length = 0.0;
    for (const Profile& stretch : stretches)
        for (std::size_t i = 1; i < stretch.size(); ++i)
            length += DistanceBetween(stretch[i - 1], stretch[i]);
    return length;
}

GridPoint TurnedPoint(const ProfilePoint& point, const Turning& turning, unsigned int nColumn, double v)
{
    // On the axis only one triangle of a column is left, whose middle this is.
    double column = nColumn;
    if (point.radius == 0.0) column += point.normalZ > 0.0 ? 0.5 : -0.5;
    const bool isSeam = nColumn == turning.nSegments && point.radius > 0.0;
    const TVec3<double> outwards = turning.Outwards(isSeam ? 0.0 : column);
    return {{point.radius * outwards.x, point.radius * outwards.y, point.z},
            {point.normalRadius * outwards.x, point.normalRadius * outwards.y, point.normalZ},
            {-outwards.y, outwards.x, 0.0},
            {column / turning.nSegments, v}};
}

} // namespace

void AddGrid(ShapeMesh& mesh, unsigned int nRows, unsigned int nColumns,
             const std::function<GridPoint(unsigned int nRow, unsigned int nColumn)>& pointAt)
{
    std::vector<MeshVertex> corners;
    corners.reserve(static_cast<std::size_t>(nRows) * nColumns);
    for (unsigned int row = 0; row < nRows; ++row)
        for (unsigned int column = 0; column < nColumns; ++column)
            corners.push_back(VertexOf(pointAt(row, column)));

    std::vector<unsigned int> places(corners.size(), kUnused);
    const auto place = [&](unsigned int corner) {
        if (places[corner] == kUnused) {
            places[corner] = static_cast<unsigned int>(mesh.vertices.size());
            mesh.vertices.push_back(corners[corner]);
        }
        return places[corner];
    };
    const auto addTriangle = [&](unsigned int a, unsigned int b, unsigned int c) {
        const TVec3<float>&p = corners[a].position, &q = corners[b].position, &r = corners[c].position;
        if (p != q && q != r && r != p)
            for (const unsigned int corner : {a, b, c})
                mesh.indices.push_back(place(corner));
    };
    for (unsigned int row = 0; row + 1 < nRows; ++row)
        for (unsigned int column = 0; column + 1 < nColumns; ++column) {
            const unsigned int upper = row * nColumns + column;
            const unsigned int lower = upper + nColumns;
            addTriangle(upper, upper + 1, lower + 1);
            addTriangle(upper, lower + 1, lower);
        }
}

TVec3<double> Turning::Outwards(double nColumn) const
{
    const double angle = Degrees(nColumn) * kRadiansPerDegree;
    return {std::cos(angle), std::sin(angle), 0.0};
}

void AddTurned(ShapeMesh& mesh, const std::vector<Profile>& stretches, const Turning& turning)
{
    const double length = LengthOf(stretches);
    double before = 0.0;
    for (const Profile& stretch : stretches) {
        std::vector<double> at;
        for (std::size_t i = 0; i < stretch.size(); ++i) {
            before += i == 0 ? 0.0 : DistanceBetween(stretch[i - 1], stretch[i]);
            at.push_back(1.0 - before / length);
        }
        const auto nRows = static_cast<unsigned int>(stretch.size());
        AddGrid(mesh, nRows, turning.nSegments + 1, [&](unsigned int row, unsigned int column) {
            const std::size_t i = nRows - 1 - row;
            return TurnedPoint(stretch[i], turning, column, at[i]);
        });
    }
}

} // namespace Host
