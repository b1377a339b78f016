#include "reference/host/ScenePicture.h"

#include "lumenta/foundation/CameraMatrices.h"
#include "lumenta/foundation/Matrix.h"
#include "lumenta/interfaces/IFreeCamera.h"
#include "lumenta/interfaces/ILightNode.h"
#include "lumenta/interfaces/IMaterial.h"
#include "lumenta/interfaces/IMesh.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/interfaces/IScene.h"
#include "reference/host/Directions.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

namespace Host {

namespace {

constexpr float kBrightestLight = 1e6f; ///< Of one component; far beyond what a picture can tell apart.

float InRange(float value, float least, float most)
{
    return value >= least ? std::min(value, most) : least; // also what is not a number
}

TVec3<float> Linear(const ColorF& colour, float factor = 1.0f)
{
    const auto component = [factor](float value) { return InRange(value * factor, 0.0f, kBrightestLight); };
    return {component(colour.r), component(colour.g), component(colour.b)};
}

TVec3<float> Row(const Matrix& matrix, int row)
{
    return {matrix(row, 0), matrix(row, 1), matrix(row, 2)};
}

/// How a placement turns normals: by the inverse transpose, which is the matrix
/// of cofactors but for its length. In double, where no product of three floats
/// under- or overflows.
class NormalTurn {
public:
    explicit NormalTurn(const Matrix& matrix)
        : m_isShift(Row(matrix, 0) == TVec3<float>{1.0f, 0.0f, 0.0f} && Row(matrix, 1) == TVec3<float>{0.0f, 1.0f, 0.0f}
                    && Row(matrix, 2) == TVec3<float>{0.0f, 0.0f, 1.0f})
    {
        const TVec3<double> rows[3] = {Widened(Row(matrix, 0)), Widened(Row(matrix, 1)), Widened(Row(matrix, 2))};
        for (std::size_t i = 0; i < 3; ++i) {
            const TVec3<double>& a = rows[(i + 1) % 3];
            const TVec3<double>& b = rows[(i + 2) % 3];
            m_rows[i] = {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
        }
        const double determinant = rows[0].x * m_rows[0].x + rows[0].y * m_rows[0].y + rows[0].z * m_rows[0].z;
        m_mirrors = determinant < 0.0;
    }

    bool Mirrors() const { return m_mirrors; }

    /// Unit, but for a mere shift, which changes nothing; zero where it has no
    /// direction any more.
    TVec3<float> Turned(const TVec3<float>& normal) const
    {
        if (m_isShift)
            return normal;
        const TVec3<double> n = Widened(normal);
        const auto along = [&n](double x, double y, double z) { return n.x * x + n.y * y + n.z * z; };
        const TVec3<double> turned{along(m_rows[0].x, m_rows[1].x, m_rows[2].x),
                                   along(m_rows[0].y, m_rows[1].y, m_rows[2].y),
                                   along(m_rows[0].z, m_rows[1].z, m_rows[2].z)};
        const double length = m_mirrors ? -LengthOf(turned) : LengthOf(turned);
        if (length == 0.0 || !std::isfinite(length))
            return {};
        return Narrowed({turned.x / length, turned.y / length, turned.z / length});
    }

private:
    bool m_isShift;
    bool m_mirrors;
    TVec3<double> m_rows[3];
};

PosedMesh MeshInWorld(const IMesh& mesh, const Matrix& world)
{
    const NormalTurn turn(world);
    PosedMesh result;
    result.name = mesh.GetName();
    result.vertices = mesh.GetVertices();
    for (MeshVertex& vertex : result.vertices) {
        TransformPoint(vertex.position, world);
        vertex.normal = turn.Turned(vertex.normal);
    }
    result.indices = mesh.GetIndices();
    if (turn.Mirrors())
        for (std::size_t first = 0; first + 3 <= result.indices.size(); first += 3)
            std::swap(result.indices[first + 1], result.indices[first + 2]);
    return result;
}

using ImageTable = std::map<const IImage*, QImage>; ///< Each image is read once.

std::optional<Texture> TextureIn(const IMaterial& material, eMaterialSlot slot, ImageTable& images)
{
    const IImage* const image = material.IsSlotEnabled(slot) ? material.GetImage(slot) : nullptr;
    if (!image)
        return std::nullopt;
    const auto [found, isNew] = images.try_emplace(image);
    if (isNew)
        found->second = TextureImage(image->ToQImage());
    if (found->second.isNull())
        return std::nullopt;
    return Texture{found->second, material.GetTextureMatrix(slot), material.IsTextureRepeated(slot),
                   material.IsTextureInverted(slot), InRange(material.GetSlotAmount(slot), 0.0f, 1.0f)};
}

Surface SurfaceOf(const IMaterial& material, ImageTable& images)
{
    Surface surface;
    surface.name = material.GetName();
    surface.base = {WithinReach(Linear(material.GetDiffuseColor())), InRange(material.GetOpacity(), 0.0f, 1.0f)};
    surface.specular = InRange(material.GetSpecularLevel(), 0.0f, 1.0f);
    surface.shininess = InRange(material.GetShininess(), 1.0f, 1000.0f);
    surface.highlight = Linear(material.GetSpecularColor());
    surface.ambient = Linear(material.GetAmbientColor());
    surface.emission = Linear(material.GetEmissionColor(), material.GetEmissionLevel());
    surface.reflection = InRange(material.GetReflectionLevel(), 0.0f, 1.0f);
    surface.mirrorTint = Linear(material.GetReflectionColor());
    surface.filter = Linear(material.GetFilterColor());
    surface.refractionIndex = InRange(material.GetRefractionIndex(), 1.0f, 4.0f);
    surface.bumpHeight = InRange(material.GetBumpHeight(), -1.0f, 1.0f);
    surface.twoSided = material.IsTwoSided();
    surface.castsShadows = material.CastsShadows();
    surface.receivesShadows = material.ReceivesShadows();
    surface.flat = material.IsFlatShaded();
    for (std::size_t slot = 0; slot < surface.textures.size(); ++slot)
        surface.textures[slot] = TextureIn(material, static_cast<eMaterialSlot>(slot), images);
    return surface;
}

/// Calls `visit(node, world)` for each visible node, in tree order.
template <typename Visitor>
void ForEachVisible(const INode& root, const Visitor& visit)
{
    struct Placed {
        const INode* node;
        Matrix parent;
    };
    std::vector<Placed> pending{{&root, {}}};
    while (!pending.empty()) {
        const INode& node = *pending.back().node;
        const Matrix world = node.GetMatrix() * pending.back().parent;
        pending.pop_back();
        if (node.IsVisible())
            visit(node, world);
        const std::vector<INode*>& children = node.GetChildren();
        for (auto child = children.rbegin(); child != children.rend(); ++child)
            pending.push_back({*child, world});
    }
}

bool IsFinite(const TVec3<float>& v)
{
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

std::optional<Lamp> LampOf(const ILightNode& light, const Matrix& world)
{
    const Lamp lamp{world.GetTranslation(), Linear(light.GetColor(), light.GetIntensity()),
                    InRange(light.GetRadius(), 0.0f, std::numeric_limits<float>::max()), light.CastsShadows()};
    return IsFinite(lamp.position) && lamp.light != TVec3<float>{} ? std::optional(lamp) : std::nullopt;
}

/// The vertical field of view of a picture into which a frame is fitted.
float FittedFieldOfView(float fieldOfView, float frameAspect, QSize size)
{
    const float aspect = static_cast<float>(std::max(size.width(), 1)) / static_cast<float>(std::max(size.height(), 1));
    Matrix projection;
    CalculateProjectionMatrix(projection, fieldOfView, frameAspect, aspect, 0.1f, 1.0f); // whatever the depths
    return 2.0f * std::atan(1.0f / projection(1, 1)) / kRadians;
}

void TakeEnvironment(PictureRequest& request, const IScene& scene)
{
    request.ground = scene.IsGroundPlaneEnabled();
    request.groundShadow = scene.IsGroundShadowEnabled();
    request.zenith = {0.0f, 0.0f, 1.0f};
    request.sunDirection = scene.GetSunDirection();
    request.sunLight = Linear(scene.GetSunLight());
    request.skyLight = Linear(scene.GetAmbientLight());
    if (scene.GetBackgroundMode() == eBackgroundStudio)
        return;
    request.background = Linear(scene.GetBackgroundColor());
    const IImage* const image = scene.GetBackgroundImage();
    if (scene.GetBackgroundMode() == eBackgroundImage && image)
        request.backgroundImage = image->ToQImage();
}

} // namespace

Camera CameraOf(const IFreeCamera& camera, QSize size)
{
    const Matrix& matrix = camera.GetMatrix();
    const TVec3<float> eye = matrix.GetTranslation();
    return {eye, eye + Row(matrix, 0) * camera.GetDistance(), Row(matrix, 2),
            FittedFieldOfView(camera.GetFieldOfView(), camera.GetFrameAspect(), size)};
}

ScenePicture::ScenePicture(const IScene& scene, const sRenderSettings& settings)
{
    m_request.size = settings.size.isEmpty() ? scene.GetRenderSize() : settings.size;
    m_request.samplesPerPixel = settings.nSamplesPerPixel;
    m_request.threads = settings.nThreads;
    m_request.camera = CameraOf(*scene.GetCamera(), m_request.size);
    TakeEnvironment(m_request, scene);

    std::map<const IMaterial*, Surface> known; // each material is read once
    ImageTable images;
    ForEachVisible(*scene.GetRoot(), [&](const INode& node, const Matrix& world) {
        if (const auto* const light = qobject_cast<ILightNode*>(&node))
            if (const std::optional<Lamp> lamp = LampOf(*light, world))
                m_request.lamps.push_back(*lamp);
        const auto* const meshNode = qobject_cast<IMeshNode*>(&node);
        if (!meshNode)
            return;
        const std::vector<IMesh*>& meshes = meshNode->GetMeshes();
        for (std::size_t i = 0; i < meshes.size(); ++i) {
            const IMaterial& material = *meshNode->GetMaterial(i);
            const auto [found, isNew] = known.try_emplace(&material);
            if (isNew)
                found->second = SurfaceOf(material, images);
            m_meshes.push_back(MeshInWorld(*meshes[i], world));
            m_surfaces.push_back(found->second);
        }
    });
    m_request.meshes = &m_meshes;
    m_request.surfaces = &m_surfaces;
}

} // namespace Host
