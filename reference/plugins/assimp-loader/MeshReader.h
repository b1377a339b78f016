#pragma once

// Private to the loader: meshes without their bones.

#include "reference/plugins/assimp-loader/MaterialReader.h"

#include <memory>
#include <vector>

struct aiMesh;

namespace SkinAnimation {
struct Geometry;
struct Node;
struct Scene;
} // namespace SkinAnimation

namespace Host {

class Report;

/// The triangles of a mesh, with every vertex of the file in the file's order;
/// null where it holds none. Not skinned yet.
///
/// Corners run clockwise as seen from outside, see Host::Model. Texture
/// coordinates have their origin top left, as images have: v is turned
/// over, and the bitangent with it. Where the file gives no tangent frame it
/// is zero. Triangles with a corner that is not finite are left out.
std::unique_ptr<SkinAnimation::Geometry> ReadMesh(const aiMesh& source, const QString& name,
                                                  const ReadMaterial& material, Report& report);

/// Whether the normals of the file can be used. If not, they come from the
/// triangles, see ShareNormals().
bool HasUsableNormals(const aiMesh& source);

/// Gives the geometries one slot of the node's normal buffer for each position
/// that occurs in them, so that they come out smooth, also from one to the next.
void ShareNormals(SkinAnimation::Node& node, const std::vector<SkinAnimation::Geometry*>& geometries);

/// Turns the triangles round that a mirroring matrix, of their node or of the
/// strongest bone of their first corner, puts inside out in the current pose.
void FaceOutwards(const SkinAnimation::Scene& scene);

} // namespace Host
