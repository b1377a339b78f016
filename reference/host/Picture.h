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
#include <QVariant>

#include <vector>

namespace Host {

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

/// What a renderer is asked for.
struct PictureRequest {
    const std::vector<PosedMesh>* meshes = nullptr;
    const QMap<QString, QImage>* textures = nullptr; ///< By the value of "texture"; may be null.
    Camera camera{};
    QSize size;
    bool ground = true;      ///< A floor plane that catches shadows.
    float groundHeight = 0;  ///< Of the floor, along the camera's up.
    int samplesPerPixel = 16; ///< Of renderers that sample.
    int threads = 0;          ///< 0 for one per core. Never changes a bit of the picture.
};

/// Makes pictures of posed meshes, without a display.
class IPictureRenderer {
public:
    virtual ~IPictureRenderer() = default;

    /// Name for the command line, in lower case.
    virtual QString GetName() const = 0;

    /// An opaque picture of the requested size, format RGB32.
    /// Degenerate or non-finite triangles are left out.
    /// \throws OutOfMemoryException the picture does not fit in memory
    virtual QImage Render(const PictureRequest& request, const Progress& progress) = 0;
};

} // namespace Host
