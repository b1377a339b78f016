#pragma once

#include "lumenta/interfaces/ISceneSaver.h"

namespace Host {

/// Saves any scene as a Lumenta document (docs/scene-file.md).
///
/// One document gives the same bytes whenever a process writes it; in another
/// process the attributes of materials may stand in another order.
class SceneFileSaver final : public ISceneSaver {
    Q_OBJECT

public:
    SceneFileSaver();

    void Save(const QString& strFileName, const IScene& scene) override;
    QStringList GetWarnings() const override { return m_warnings; }

private:
    QStringList m_warnings;
};

} // namespace Host
