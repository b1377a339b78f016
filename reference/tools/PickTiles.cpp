#include "reference/tools/PickTiles.h"

#include "lumenta/foundation/CameraMatrices.h"
#include "lumenta/interfaces/IMesh.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/scene/NodeHierarchy.h"
#include "lumenta/scene/Picking.h"
#include "reference/host/Directions.h"
#include "reference/host/document/Placement.h"
#include "reference/host/document/Scene.h"

#include <QRectF>

#include <algorithm>
#include <cmath>
#include <optional>

namespace Host {

namespace {

constexpr int kTile = 16;             ///< Side in pixels.
constexpr double kTolerance = 0.0001; ///< Of picking: so much of a mesh's diagonal it may miss a triangle by.

using Vec = TVec3<double>;

Vec Scaled(const Vec& v, double factor)
{
    return {v.x * factor, v.y * factor, v.z * factor};
}

double Along(const Vec& a, const Vec& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

Vec Row(const Matrix& matrix, int row)
{
    return Widened(TVec3<float>{matrix(row, 0), matrix(row, 1), matrix(row, 2)});
}

/// How far picking may miss a triangle of the mesh by, in the world.
double ToleranceOf(const IMesh& mesh, const Matrix& world)
{
    const double scale = std::max({LengthOf(Row(world, 0)), LengthOf(Row(world, 1)), LengthOf(Row(world, 2))});
    return kTolerance * scale * LengthOf(Widened(mesh.GetBBox().max) - Widened(mesh.GetBBox().min));
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

    /// The pixels through which rays could meet a triangle, if they may miss it
    /// by `tolerance`: some more, never less. Nothing where it could be all.
    std::optional<QRectF> PixelsOf(const Vec (&corners)[3], double tolerance) const
    {
        const double a = LengthOf(corners[2] - corners[1]);
        const double b = LengthOf(corners[0] - corners[2]);
        const double c = LengthOf(corners[1] - corners[0]);
        const double s = (a + b + c) * 0.5;
        const double radius = std::sqrt(std::max(s * (s - a) * (s - b) * (s - c), 0.0)) / s;
        // So thin a triangle has a plane that depends on rounding.
        if (!(radius > tolerance)) return {};
        // Points no farther outside of any edge than that are a larger triangle
        // around the centre of the circle within.
        const Vec centre = Scaled(Scaled(corners[0], a) + Scaled(corners[1], b) + Scaled(corners[2], c), 0.5 / s);
        const double margin = 2.0 * tolerance; // once would do, but for rounding
        QRectF pixels;
        for (const Vec& corner : corners) {
            const auto spot = SpotOf(centre + Scaled(corner - centre, 1.0 + margin / radius), margin);
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
    const std::vector<unsigned int>& indices = source.picked.mesh->GetIndices();
    const double tolerance = ToleranceOf(*source.picked.mesh, source.world);
    for (std::size_t first = 0; first + 3 <= indices.size(); first += 3) {
        Vec corners[3];
        for (std::size_t i = 0; i < 3; ++i) {
            TVec3<float> corner = source.picked.mesh->GetVertices()[indices[first + i]].position;
            TransformPoint(corner, source.world);
            corners[i] = Widened(corner);
        }
        const auto pixels = view.PixelsOf(corners, tolerance);
        const auto tile = [](double pixel, int nTiles) {
            return static_cast<int>(std::floor(std::clamp(pixel / kTile, -1.0, static_cast<double>(nTiles))));
        };
        const int left = pixels ? std::max(tile(pixels->left(), m_columns), 0) : 0;
        const int right = pixels ? std::min(tile(pixels->right(), m_columns), m_columns - 1) : m_columns - 1;
        const int top = pixels ? std::max(tile(pixels->top(), m_rows), 0) : 0;
        const int bottom = pixels ? std::min(tile(pixels->bottom(), m_rows), m_rows - 1) : m_rows - 1;
        for (int row = top; row <= bottom; ++row)
            for (int column = left; column <= right; ++column)
                m_tiles[static_cast<std::size_t>(row * m_columns + column)].push_back({m_sources.size(), first});
    }
    m_sources.push_back(source);
}

void PickTiles::PickRow(int row, std::vector<Picked>& picked) const
{
    for (int column = 0; column < m_columns; ++column) {
        const Tile& tile = m_tiles[static_cast<std::size_t>(row * m_columns + column)];
        if (!tile.empty()) PickTile(tile, column, row, picked);
    }
}

void PickTiles::PickTile(const Tile& tile, int column, int row, std::vector<Picked>& picked) const
{
    Scene scene;
    scene.GetCamera()->SetState(m_scene.GetCamera()->GetState());
    std::vector<std::pair<const INode*, Picked>> originals;
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
        originals.emplace_back(node, m_sources[source].picked);
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
