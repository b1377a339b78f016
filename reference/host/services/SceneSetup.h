#pragma once

#include "lumenta/interfaces/IScene.h"

#include <QStringList>

class IImageManager;

namespace Host {

/// A batch of the scene's, as long as it lives, whatever is thrown in between.
class SceneBracket {
public:
    SceneBracket(IScene& scene, const sSceneModifications& planned)
        : m_scene(scene)
    {
        m_scene.BeginUpdate(planned);
    }
    ~SceneBracket() { m_scene.EndUpdate(); }
    SceneBracket(const SceneBracket&) = delete;
    SceneBracket& operator=(const SceneBracket&) = delete;

private:
    IScene& m_scene;
};

/// Loads, for whoever shows them, the images that the scene's materials name and have not yet, from where
/// they are named to be, seen from the folder of the scene's file, or else from
/// that folder itself.
/// That is nothing to save: the scene is no more modified than before.
/// \return a text for each that could not be had
QStringList LoadSceneImages(IScene& scene, IImageManager& images);

/// Turns the camera so that all that is visible fills its frame.
void ShowAll(IScene& scene);

} // namespace Host
