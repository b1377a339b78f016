#pragma once

// Private to the exporter: a mesh in Assimp's terms.

#include "lumenta/foundation/Matrix.h"
#include "lumenta/foundation/Matrix2.h"

#include <memory>

class IMesh;
struct aiMesh;

namespace Host {

/// Corners run anticlockwise as seen from outside and texture coordinates have
/// their origin bottom left, as Assimp has them.
/// \param placement of the vertices; a mirroring one keeps the outside outside
/// \param texture   from coordinates of the mesh to those of its image
std::unique_ptr<aiMesh> WriteMesh(const IMesh& mesh, const Matrix& placement, const Matrix2& texture,
                                  unsigned int nMaterial);

} // namespace Host
