#include "reference/plugins/painter-renderer/Patches.h"

#include "reference/host/Directions.h"

#include <algorithm>
#include <cmath>

namespace Host {

namespace {

constexpr float kNear = 0.01f; ///< In studio units. Nothing nearer to the eye is painted.

struct Corner {
    TVec3<float> fromEye;
    TVec3<float> normal; ///< As the vertex has it.
    TVec2<float> texCoord;
};

using Piece = std::array<Corner, 3>;

/// The corner in the middle. The same from both ends, so that the triangles on
/// either side of an edge agree.
Corner Middle(const Corner& a, const Corner& b)
{
    return {a.fromEye * 0.5f + b.fromEye * 0.5f, a.normal * 0.5f + b.normal * 0.5f,
            a.texCoord * 0.5f + b.texCoord * 0.5f};
}

/// Where the edge from `in`, in front of the near plane, to `out` meets it.
Corner AtNearPlane(const Corner& in, const Corner& out)
{
    const float t = (in.fromEye.z - kNear) / (in.fromEye.z - out.fromEye.z);
    Corner corner{in.fromEye * (1.0f - t) + out.fromEye * t, in.normal * (1.0f - t) + out.normal * t,
                  in.texCoord * (1.0f - t) + out.texCoord * t};
    corner.fromEye.z = kNear;
    return corner;
}

class PatchCutter {
public:
    explicit PatchCutter(const PictureRequest& request, const Studio& studio)
        : m_meshes(*request.meshes)
        , m_studio(studio)
        , m_surfaces(request)
        , m_longestEdge(std::max(3.0, std::max(studio.size.width(), studio.size.height()) / 160.0))
    {
    }

    std::vector<Patch> CutAll()
    {
        for (std::size_t mesh = 0; mesh < m_meshes.size(); ++mesh)
            for (std::size_t first = 0; first < m_meshes[mesh].indices.size(); first += 3)
                if (IsDrawable(m_meshes[mesh], first))
                    ClipAndCut(PieceOf(m_meshes[mesh], first), m_surfaces.Of(mesh));
        std::stable_sort(m_patches.begin(), m_patches.end(),
                         [](const Patch& a, const Patch& b) { return a.depth > b.depth; });
        return std::move(m_patches);
    }

private:
    Piece PieceOf(const PosedMesh& mesh, std::size_t first) const
    {
        Piece piece;
        for (std::size_t i = 0; i < 3; ++i) {
            const MeshVertex& vertex = mesh.vertices[mesh.indices[first + i]];
            piece[i] = {m_studio.FromEye(m_studio.FromWorld(vertex.position)), vertex.normal, vertex.texCoord};
        }
        return piece;
    }

    /// Cuts off what lies behind the near plane: one or two triangles remain.
    void ClipAndCut(const Piece& piece, const Surface& surface)
    {
        std::array<Corner, 4> polygon;
        std::size_t count = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            const Corner& current = piece[i];
            const Corner& next = piece[(i + 1) % 3];
            const bool currentIn = current.fromEye.z >= kNear;
            const bool nextIn = next.fromEye.z >= kNear;
            if (currentIn)
                polygon[count++] = current;
            if (currentIn != nextIn)
                polygon[count++] = currentIn ? AtNearPlane(current, next) : AtNearPlane(next, current);
        }
        if (count >= 3)
            Cut({polygon[0], polygon[1], polygon[2]}, surface);
        if (count == 4)
            Cut({polygon[0], polygon[2], polygon[3]}, surface);
    }

    /// Halves the longest edge until all are short. Pieces out of the picture
    /// are dropped on the way, so that a huge triangle costs no more than its
    /// visible part.
    void Cut(const Piece& whole, const Surface& surface)
    {
        const double longestEdge = surface.texture ? 0.5 * m_longestEdge : m_longestEdge;
        m_open.assign(1, whole);
        while (!m_open.empty()) {
            const Piece piece = m_open.back();
            m_open.pop_back();
            const std::array<QPointF, 3> pixels = PixelsOf(piece);
            if (!TouchesPicture(pixels))
                continue;
            const std::size_t from = LongestEdge(pixels);
            if (!(EdgeLength(pixels, from) > longestEdge)) {
                m_patches.push_back({pixels, Length(Centroid(piece)), ColourOf(piece, surface)});
                continue;
            }
            const Corner& a = piece[from];
            const Corner& b = piece[(from + 1) % 3];
            const Corner& c = piece[(from + 2) % 3];
            const Corner middle = Middle(a, b);
            m_open.push_back({a, middle, c});
            m_open.push_back({middle, b, c});
        }
    }

    std::array<QPointF, 3> PixelsOf(const Piece& piece) const
    {
        return {m_studio.ToPixel(piece[0].fromEye), m_studio.ToPixel(piece[1].fromEye),
                m_studio.ToPixel(piece[2].fromEye)};
    }

    bool TouchesPicture(const std::array<QPointF, 3>& p) const
    {
        return std::max({p[0].x(), p[1].x(), p[2].x()}) >= 0.0
            && std::max({p[0].y(), p[1].y(), p[2].y()}) >= 0.0
            && std::min({p[0].x(), p[1].x(), p[2].x()}) <= m_studio.size.width()
            && std::min({p[0].y(), p[1].y(), p[2].y()}) <= m_studio.size.height();
    }

    static double EdgeLength(const std::array<QPointF, 3>& p, std::size_t from)
    {
        const QPointF edge = p[(from + 1) % 3] - p[from];
        return std::hypot(edge.x(), edge.y());
    }

    static std::size_t LongestEdge(const std::array<QPointF, 3>& p)
    {
        std::size_t longest = 0;
        for (std::size_t i = 1; i < 3; ++i)
            if (EdgeLength(p, i) > EdgeLength(p, longest))
                longest = i;
        return longest;
    }

    static TVec3<float> Centroid(const Piece& piece)
    {
        return (piece[0].fromEye + piece[1].fromEye + piece[2].fromEye) * (1.0f / 3.0f);
    }

    /// The studio direction of a direction in the camera's frame.
    TVec3<float> InStudio(const TVec3<float>& direction) const
    {
        return m_studio.right * direction.x + m_studio.above * direction.y + m_studio.forward * direction.z;
    }

    /// The normal in the middle, towards the viewer.
    TVec3<float> NormalOf(const Piece& piece) const
    {
        const TVec3<float> inFrame = Normalized(Cross(Normalized(piece[1].fromEye - piece[0].fromEye),
                                                      Normalized(piece[2].fromEye - piece[0].fromEye)));
        const TVec3<float> faceNormal = InStudio(Dot(inFrame, Centroid(piece)) > 0.0f ? -inFrame : inFrame);
        const TVec3<float> smooth = UnitOr(piece[0].normal + piece[1].normal + piece[2].normal, faceNormal);
        return Dot(smooth, faceNormal) < 0.0f ? -smooth : smooth;
    }

    QRgb ColourOf(const Piece& piece, const Surface& surface) const
    {
        const TVec3<float> normal = NormalOf(piece);
        const SurfaceColour colour =
            surface.At((piece[0].texCoord + piece[1].texCoord + piece[2].texCoord) * (1.0f / 3.0f));
        const TVec3<float> sun = kSunLight * std::max(0.0f, Dot(normal, m_studio.sun));
        const float highlight = surface.HighlightOn(normal, m_studio.sun, Normalized(InStudio(-Centroid(piece))));
        const QRgb pixel =
            PixelFromLinear(Exposed(Times(colour.colour, sun + m_studio.SkyOn(normal)) + sun * highlight));
        return qRgba(qRed(pixel), qGreen(pixel), qBlue(pixel), qRound(colour.opacity * 255.0f));
    }

    const std::vector<PosedMesh>& m_meshes;
    const Studio& m_studio;
    const SurfaceTable m_surfaces;
    const double m_longestEdge;
    std::vector<Piece> m_open;
    std::vector<Patch> m_patches;
};

} // namespace

std::vector<Patch> CutIntoPatches(const PictureRequest& request, const Studio& studio)
{
    return PatchCutter(request, studio).CutAll();
}

} // namespace Host
