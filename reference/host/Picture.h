#pragma once

#include "lumenta/foundation/BBox.h"
#include "lumenta/foundation/Color.h"
#include "lumenta/foundation/MeshVertex.h"
#include "lumenta/platform/IMeshNodeBuilder.h"
#include "reference/host/Progress.h"

#include <QImage>
#include <QMap>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>
#include <optional>
#include <vector>

namespace Host {

struct Surface;

/// One posed mesh in world space, on its own two feet: it shares nothing with
/// the scene it was posed from.
struct PosedMesh {
    QString name;
    std::vector<MeshVertex> vertices;  ///< Texture coordinates as in Host::Model: from the upper left.
    std::vector<unsigned int> indices; ///< Three per triangle.
    QString materialName;
    QMap<QString, QVariant> materialParameters; ///< Keys as in Host::Material.
};

/// Keeps a copy of every mesh of one pose.
class MeshCollector final : public IMeshNodeBuilder {
public:
    void BeginModel(const QString& strName, std::size_t nExpected) override;
    void EndModel() override;
    void AddMeshNode(const QString& name, std::vector<MeshVertex>& vertices, std::vector<unsigned int>& indices,
                     const QString& materialName, const QMap<QString, QVariant>& materialParameters) override;

    std::vector<PosedMesh> meshes;
};

/// Whether the triangle whose corners begin at `firstIndex` can be drawn: its
/// three vertices exist and are finite, and it has some area.
bool IsDrawable(const PosedMesh& mesh, std::size_t firstIndex);

/// The box of the triangles that can be drawn; empty where there are none.
TBBox<float> BoxOf(const std::vector<PosedMesh>& meshes);

/// A perspective view, right-handed.
struct Camera {
    TVec3<float> eye;
    TVec3<float> target;
    TVec3<float> up;
    float verticalFieldOfView; ///< Degrees.
};

/// The camera that looks at the whole of `box` from a direction: azimuth 0
/// looks at the front (for up = y: from +z; for up = z: from -y; for up = x:
/// from +z), growing anticlockwise as seen from above; elevation is degrees
/// above the horizon, held just short of the poles, where up would have no
/// direction in the picture. An empty or point-sized box is framed as a unit
/// box.
/// \throws Exception the box is so large that the eye could come to stand beyond what a float holds
Camera FrameBox(const TBBox<float>& box, const TVec3<float>& up, float azimuth, float elevation, QSize size);

/// How far from its target `camera` has to stand to see every triangle that can
/// be drawn, with the same margin as FrameBox() leaves; 0 where there are none.
float DistanceToSee(const std::vector<PosedMesh>& meshes, const Camera& camera, QSize size);

/// A ball that shines in all directions.
struct Lamp {
    TVec3<float> position;
    TVec3<float> light; ///< Linear, on a surface one unit away that faces it; 1 is as bright as the sun.
    float radius;       ///< Softens shadows.
    bool castsShadows;
};

/// What a renderer is asked for. Colours are linear.
struct PictureRequest {
    const std::vector<PosedMesh>* meshes = nullptr;
    const QMap<QString, QImage>* textures = nullptr; ///< By the value of "texture"; may be null.
    Camera camera{};
    QSize size;
    bool ground = true;      ///< A floor plane that catches shadows.
    float groundHeight = 0;  ///< Of the floor, along the camera's up.
    int samplesPerPixel = 16; ///< Of renderers that sample.
    int threads = 0;          ///< 0 for one per core. Never changes a bit of the picture.

    TVec3<float> zenith{};    ///< Where the sky is; zero for the camera's up. The ground's height counts along it.
    bool groundShadow = true; ///< Without its shadows the ground only hides what lies below.
    TVec3<float> sunDirection{}; ///< Towards the sun; zero for the photographer's left shoulder.
    TVec3<float> sunLight{1.0f, 1.0f, 1.0f}; ///< Factor of the studio's sun; 0 for none.
    TVec3<float> skyLight{1.0f, 1.0f, 1.0f}; ///< Factor of the light that comes from everywhere.
    std::vector<Lamp> lamps{};
    std::optional<TVec3<float>> background{}; ///< None for the studio's own backdrop.
    QImage backgroundImage{};                 ///< Before either of them, stretched over the picture.
    const std::vector<Surface>* surfaces = nullptr; ///< One per mesh, in place of their parameters; or null.
    std::function<bool()> isStopped{}; ///< Whether to end early. Asked on the caller's thread, after progress, where
                                       ///< something is left to do.

    bool MustStop() const { return isStopped && isStopped(); }
};

/// Makes pictures of posed meshes, without a display.
class IPictureRenderer {
public:
    virtual ~IPictureRenderer() = default;

    /// Name for the command line, in lower case.
    virtual QString GetName() const = 0;

    /// What it can't show of a request, in words for a person.
    virtual QStringList GetLeftOut(const PictureRequest& request) const;

    /// An opaque picture of the requested size, format RGB32; where it was
    /// stopped, black from some row on. Degenerate or non-finite triangles are
    /// left out.
    /// \param progress is told 1 as soon as all is ready for the first pixel
    /// \throws OutOfMemoryException the picture does not fit in memory
    virtual QImage Render(const PictureRequest& request, const Progress& progress) = 0;
};

} // namespace Host
