#pragma once

#include "lumenta/interfaces/IExporter.h"
#include "reference/host/IModelExporter.h"

namespace Host {

/// Writes models by means of Assimp: what can be seen, with its tree, names and
/// materials where the format has room for them. What it writes, the loader that
/// uses Assimp reads back upright, in the same unit where the format has one.
class AssimpExporter final : public IExporter, public IModelExporter {
    Q_OBJECT
    Q_INTERFACES(IModelExporter)

public:
    using IExporter::IExporter;

    const std::vector<sModelExportFormat>& GetFormats() const override;
    /// A tree deeper than 1,000 levels is refused: it would use up Assimp's stack.
    void Export(const IScene& scene, const QString& strFileName, const QString& strFormatId) override;
    QStringList GetWarnings() const override { return m_warnings; }

private:
    void Write(const IScene& scene, const QString& strFileName, std::size_t nFormat);

    QStringList m_warnings;
};

} // namespace Host
