#pragma once

#include "lumenta/interfaces/IRender.h"
#include "reference/host/Surface.h"

class IFreeCamera;

namespace Host {

/// What a renderer is asked for when it is to draw a scene: all that the scene
/// shows, read through the contracts alone and copied, so that the scene is not
/// asked again.
///
/// Shown is each visible mesh node, in tree order, whether or not its parents
/// are. Where a node's placement mirrors, the corners of its triangles change
/// places: what was the front stays it.
class ScenePicture {
public:
    ScenePicture(const IScene& scene, const sRenderSettings& settings);
    ScenePicture(const ScenePicture&) = delete; // the request points into it
    ScenePicture& operator=(const ScenePicture&) = delete;

    const PictureRequest& GetRequest() const { return m_request; }
    PictureRequest& GetRequest() { return m_request; }

private:
    std::vector<PosedMesh> m_meshes;
    std::vector<Surface> m_surfaces; ///< Parallel to the meshes.
    PictureRequest m_request;
};

/// The camera of a scene as a picture of this size has it: the frame of the
/// scene's camera is fitted into the picture.
Camera CameraOf(const IFreeCamera& camera, QSize size);

} // namespace Host
