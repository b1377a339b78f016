#pragma once

#include <QStringList>

class IImageManager;
class IScene;

namespace Host {

/// Loads the images that the scene's materials name and have not yet, from where
/// they are named to be, seen from the folder of the scene's file, or else from
/// that folder itself.
/// \return a text for each that could not be had
QStringList LoadSceneImages(IScene& scene, IImageManager& images);

/// Turns the camera so that all that is visible fills its frame.
void ShowAll(IScene& scene);

} // namespace Host
