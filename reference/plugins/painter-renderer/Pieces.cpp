#include "reference/plugins/painter-renderer/Pieces.h"

#include <algorithm>

namespace Host {

namespace {

/// Where the edge from `in`, in front of the near plane, to `out` meets it.
Corner AtNearPlane(const Corner& in, const Corner& out)
{
    const float t = (in.fromEye.z - kNearPlane) / (in.fromEye.z - out.fromEye.z);
    Corner corner{in.fromEye * (1.0f - t) + out.fromEye * t, in.normal * (1.0f - t) + out.normal * t,
                  in.texCoord * (1.0f - t) + out.texCoord * t};
    corner.fromEye.z = kNearPlane;
    return corner;
}

/// Cuts off what lies behind the near plane: one or two triangles remain, or
/// none.
void AddClipped(const Piece& piece, std::vector<Piece>& pieces)
{
    std::array<Corner, 4> polygon;
    std::size_t count = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        const Corner& current = piece.corners[i];
        const Corner& next = piece.corners[(i + 1) % 3];
        const bool currentIn = current.fromEye.z >= kNearPlane;
        const bool nextIn = next.fromEye.z >= kNearPlane;
        if (currentIn)
            polygon[count++] = current;
        if (currentIn != nextIn)
            polygon[count++] = currentIn ? AtNearPlane(current, next) : AtNearPlane(next, current);
    }
    if (count >= 3)
        pieces.push_back({{polygon[0], polygon[1], polygon[2]}, piece.surface});
    if (count == 4)
        pieces.push_back({{polygon[0], polygon[2], polygon[3]}, piece.surface});
}

/// Whether the back of a triangle is in sight. Corners run clockwise as seen
/// from the front, in the camera's frame too.
bool IsFromBehind(const Piece& piece)
{
    const TVec3<float>& a = piece.corners[0].fromEye;
    return Dot(Cross(piece.corners[1].fromEye - a, piece.corners[2].fromEye - a), a) > 0.0f;
}

float Depth(const Piece& piece)
{
    return Length(piece.corners[0].fromEye + piece.corners[1].fromEye + piece.corners[2].fromEye);
}

} // namespace

std::vector<Piece> PiecesInFront(const PictureRequest& request, const SurfaceTable& surfaces, const Studio& studio)
{
    std::vector<Piece> pieces;
    for (std::size_t index = 0; index < request.meshes->size(); ++index) {
        const PosedMesh& mesh = (*request.meshes)[index];
        for (std::size_t first = 0; first < mesh.indices.size(); first += 3) {
            if (!IsDrawable(mesh, first))
                continue;
            Piece piece{{}, &surfaces.Of(index)};
            for (std::size_t i = 0; i < 3; ++i) {
                const MeshVertex& vertex = mesh.vertices[mesh.indices[first + i]];
                piece.corners[i] = {studio.FromEye(studio.FromWorld(vertex.position)), vertex.normal, vertex.texCoord};
            }
            if (piece.surface->twoSided || !IsFromBehind(piece))
                AddClipped(piece, pieces);
        }
    }
    std::stable_sort(pieces.begin(), pieces.end(), [](const Piece& a, const Piece& b) { return Depth(a) > Depth(b); });
    return pieces;
}

} // namespace Host
