#include "reference/tools/PickTiles.h"

#include "lumenta/foundation/CameraMatrices.h"
#include "lumenta/interfaces/IMesh.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/scene/NodeHierarchy.h"
#include "lumenta/scene/Picking.h"
#include "lumenta/scene/Ray.h"
#include "reference/host/Directions.h"
#include "reference/host/document/Placement.h"
#include "reference/host/document/Scene.h"

#include <QRectF>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace Host {

namespace {

constexpr int kTile = 8; ///< Side in pixels.
constexpr double kRounding =
    4.0 * static_cast<double>(std::numeric_limits<float>::epsilon()); ///< Of a few steps in single precision.

using Vec = TVec3<double>;

Vec Scaled(const Vec& v, double factor)
{
    return {v.x * factor, v.y * factor, v.z * factor};
}

double Along(const Vec& a, const Vec& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

Vec Across(const Vec& a, const Vec& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

Vec Row(const Matrix& matrix, int row)
{
    return Widened(TVec3<float>{matrix(row, 0), matrix(row, 1), matrix(row, 2)});
}

Vec Placed(const Vec& point, const Matrix& world)
{
    return Scaled(Row(world, 0), point.x) + Scaled(Row(world, 1), point.y) + Scaled(Row(world, 2), point.z)
           + Row(world, 3);
}

/// No direction grows by more.
double GrowthOf(const Matrix& world)
{
    double squares = 0.0;
    for (const int row : {0, 1, 2})
        squares += Along(Row(world, row), Row(world, row));
    return std::sqrt(squares);
}

/// A triangle of a mesh, in the mesh's coordinates.
struct Triangle {
    TVec3<float> corners[3];
};

/// Nothing is met of what the library takes to have no area.
bool IsFlat(const Triangle& triangle)
{
    const auto& [a, b, c] = triangle.corners;
    return Length(Cross(c - b, c - a)) == 0.0f;
}

/// Every ray that meets a triangle passes no farther than `aside` from this one.
struct Reach {
    Vec corners[3];
    double aside;
};

/// Nothing for a triangle so thin or so small that its plane is a matter of rounding.
std::optional<Reach> ReachOf(const Triangle& triangle, double tolerance)
{
    constexpr double kLeastArea = 1e-21; // its square has to be a float
    const Vec corners[3] = {Widened(triangle.corners[0]), Widened(triangle.corners[1]), Widened(triangle.corners[2])};
    const double a = LengthOf(corners[2] - corners[1]);
    const double b = LengthOf(corners[0] - corners[2]);
    const double c = LengthOf(corners[1] - corners[0]);
    const double area = LengthOf(Across(corners[2] - corners[1], corners[2] - corners[0])); // doubled
    // By what angle rounding may turn the normal, which comes from these two edges.
    const double tilt = 2.0 * kRounding * a * b / area;
    if (!(area > kLeastArea && tilt < 0.5)) return {};

    double farthest = 0.0;
    for (const Vec& corner : corners)
        farthest = std::max(farthest, LengthOf(corner));
    // Points no farther outside of any edge than `slack` are a larger triangle
    // around the centre of the circle within. Half of it is for the tilt.
    const double slack = 2.0 * tolerance + kRounding * farthest;
    const double radius = area / (a + b + c);
    const double enlargement = 1.0 + slack / radius;
    const Vec centre = Scaled(Scaled(corners[0], a) + Scaled(corners[1], b) + Scaled(corners[2], c), 1.0 / (a + b + c));
    Reach reach{{}, slack + 2.0 * tilt * enlargement * std::max({a, b, c})};
    for (int i = 0; i < 3; ++i)
        reach.corners[i] = centre + Scaled(corners[i] - centre, enlargement);
    return reach;
}

} // namespace

/// Where in the picture things are.
class View {
public:
    View(const IFreeCamera& camera, QSize size)
        : m_camera(camera.GetMatrix())
        , m_size(size)
    {
        Matrix projection;
        const float aspect = static_cast<float>(size.width()) / static_cast<float>(size.height());
        CalculateProjectionMatrix(projection, camera.GetFieldOfView(), camera.GetFrameAspect(), aspect, 0.1f, 1000.0f);
        m_toRight = static_cast<double>(projection.m[0]) * size.width() * 0.5;
        m_down = static_cast<double>(projection.m[5]) * size.height() * 0.5;
    }

    /// The pixels through which rays could meet a triangle of a mesh that is
    /// placed so: some more, never less. Nothing where it could be all.
    std::optional<QRectF> PixelsOf(const Triangle& triangle, double tolerance, const Matrix& world) const
    {
        const std::optional<Reach> reach = ReachOf(triangle, tolerance);
        if (!reach) return {};
        QRectF pixels;
        for (const Vec& corner : reach->corners) {
            const auto spot = SpotOf(Placed(corner, world), reach->aside * GrowthOf(world));
            if (!spot) return {};
            pixels = pixels.isNull() ? *spot : pixels.united(*spot);
        }
        return pixels;
    }

private:
    /// Where a ball stands in the picture. Nothing where it comes near the camera.
    std::optional<QRectF> SpotOf(const Vec& point, double radius) const
    {
        const Vec fromEye = point - Widened(m_camera.GetTranslation());
        const double depth = Along(fromEye, Row(m_camera, 0)) - radius;
        if (!(depth > radius)) return {};
        const double toRight = -Along(fromEye, Row(m_camera, 1)) / (depth + radius);
        const double down = -Along(fromEye, Row(m_camera, 2)) / (depth + radius);
        const double x = 0.5 * m_size.width() + toRight * m_toRight;
        const double y = 0.5 * m_size.height() + down * m_down;
        const double dx = 1.0 + radius / depth * (1.0 + std::fabs(toRight)) * m_toRight;
        const double dy = 1.0 + radius / depth * (1.0 + std::fabs(down)) * m_down;
        return QRectF(x - dx, y - dy, 2.0 * dx, 2.0 * dy);
    }

    Matrix m_camera;
    QSize m_size;
    double m_toRight; ///< Pixels for a slope of 1.
    double m_down;
};

PickTiles::PickTiles(const IScene& scene, QSize size)
    : m_scene(scene)
    , m_size(size)
    , m_columns((size.width() + kTile - 1) / kTile)
    , m_rows((size.height() + kTile - 1) / kTile)
    , m_tiles(static_cast<std::size_t>(m_columns) * static_cast<std::size_t>(m_rows))
{
    const View view(*scene.GetCamera(), size);
    for (INode* const node : CollectAllChildren({scene.GetRoot()})) {
        const auto* const meshNode = qobject_cast<IMeshNode*>(node);
        if (!meshNode || !node->IsVisible() || meshNode->IsExcludedFromTracing()) continue;
        for (const IMesh* const mesh : meshNode->GetMeshes())
            AddMesh({{node, mesh}, WorldOf(node)}, view);
    }
}

void PickTiles::AddMesh(const Source& source, const View& view)
{
    const IMesh& mesh = *source.picked.mesh;
    const std::vector<unsigned int>& indices = mesh.GetIndices();
    const double tolerance =
        static_cast<double>(Ray::kTolerance) * LengthOf(Widened(mesh.GetBBox().max) - Widened(mesh.GetBBox().min));
    const auto tile = [](double pixel, int nTiles) {
        return static_cast<int>(std::floor(std::clamp(pixel / kTile, -1.0, static_cast<double>(nTiles))));
    };
    for (std::size_t first = 0; first + 3 <= indices.size(); first += 3) {
        Triangle triangle;
        for (std::size_t i = 0; i < 3; ++i)
            triangle.corners[i] = mesh.GetVertices()[indices[first + i]].position;
        if (IsFlat(triangle)) continue;
        const auto pixels = view.PixelsOf(triangle, tolerance, source.world);
        const int left = pixels ? std::max(tile(pixels->left(), m_columns), 0) : 0;
        const int right = pixels ? std::min(tile(pixels->right(), m_columns), m_columns - 1) : m_columns - 1;
        const int top = pixels ? std::max(tile(pixels->top(), m_rows), 0) : 0;
        const int bottom = pixels ? std::min(tile(pixels->bottom(), m_rows), m_rows - 1) : m_rows - 1;
        for (int row = top; row <= bottom; ++row)
            for (int column = left; column <= right; ++column)
                m_tiles[IndexOf(row, column)].push_back({m_sources.size(), first});
    }
    m_sources.push_back(source);
}

std::vector<Picked> PickTiles::GetList() const
{
    std::vector<Picked> list(1);
    for (const Source& source : m_sources)
        list.push_back(source.picked);
    return list;
}

void PickTiles::PickRow(int row, std::vector<Place>& picked) const
{
    for (int column = 0; column < m_columns; ++column) {
        const Tile& tile = m_tiles[IndexOf(row, column)];
        if (!tile.empty()) PickTile(tile, column, row, picked);
    }
}

void PickTiles::PickTile(const Tile& tile, int column, int row, std::vector<Place>& picked) const
{
    Scene scene;
    scene.GetCamera()->SetState(m_scene.GetCamera()->GetState());
    std::vector<std::pair<const INode*, Place>> originals;
    for (auto candidate = tile.begin(); candidate != tile.end();) {
        const std::size_t source = candidate->source;
        const IMesh& mesh = *m_sources[source].picked.mesh;
        // The tolerance comes from the box, so that has to stay what it was.
        std::vector<MeshVertex> vertices(2);
        vertices[0].position = mesh.GetBBox().min;
        vertices[1].position = mesh.GetBBox().max;
        std::vector<unsigned int> indices;
        for (; candidate != tile.end() && candidate->source == source; ++candidate)
            for (std::size_t i = 0; i < 3; ++i) {
                indices.push_back(static_cast<unsigned int>(vertices.size()));
                vertices.push_back(mesh.GetVertices()[mesh.GetIndices()[candidate->firstIndex + i]]);
            }
        INode* const node = scene.AddMesh(scene.GetRoot(), QString(), std::move(vertices), std::move(indices));
        node->SetMatrix(m_sources[source].world);
        originals.emplace_back(node, static_cast<Place>(source + 1));
    }

    const TVec2<float> viewSize{static_cast<float>(m_size.width()), static_cast<float>(m_size.height())};
    for (int y = row * kTile; y < std::min((row + 1) * kTile, m_size.height()); ++y)
        for (int x = column * kTile; x < std::min((column + 1) * kTile, m_size.width()); ++x) {
            INode* node = nullptr;
            const IMesh* mesh = nullptr;
            FindNodeByScreenPoint({x, y}, viewSize, scene, node, mesh);
            for (const auto& [copy, original] : originals)
                if (copy == node)
                    picked[static_cast<std::size_t>(y) * static_cast<std::size_t>(m_size.width())
                           + static_cast<std::size_t>(x)] = original;
        }
}

} // namespace Host
