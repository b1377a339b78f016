#pragma once

#include "lumenta/interfaces/ISceneLoader.h"

class IImageManager;

namespace Host {

/// Opens Lumenta documents (docs/scene-file.md) into any scene.
///
/// A document is read and checked as a whole before the scene is touched. An
/// image that can't be had, and nothing else, is a matter for a warning.
class SceneFileLoader final : public ISceneLoader {
    Q_OBJECT

public:
    /// \param pImages loads the document's images; null for none. Outlives the
    ///                scenes, too, which give the images back.
    explicit SceneFileLoader(IImageManager* pImages);

    bool CanLoad(const QString& strFileName) const override;
    void Load(const QString& strFileName, IScene& scene) override;
    QStringList GetWarnings() const override { return m_warnings; }

private:
    IImageManager* const m_pImages;
    QStringList m_warnings;
};

} // namespace Host
