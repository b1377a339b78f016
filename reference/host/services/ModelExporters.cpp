#include "reference/host/services/ModelExporters.h"

#include "lumenta/interfaces/IExporter.h"
#include "reference/host/PluginHost.h"

#include <QDir>

namespace Host {

std::vector<ModelExporter> ModelExporters(const PluginHost& plugins)
{
    std::vector<ModelExporter> exporters;
    for (const PluginService& service : plugins.ServicesOf<IExporter>()) {
        const std::shared_ptr<IExporter> exporter = plugins.TryToCreateService<IExporter>(service.id);
        if (auto* const pModels = qobject_cast<IModelExporter*>(exporter.get()))
            exporters.emplace_back(exporter, pModels);
    }
    return exporters;
}

ModelExporter ExporterFor(const std::vector<ModelExporter>& exporters, const QString& strFileName)
{
    const QString suffix = QFileInfo(strFileName).suffix();
    for (const ModelExporter& exporter : exporters)
        for (const sModelExportFormat& format : exporter->GetFormats())
            if (format.extensions.contains(suffix, Qt::CaseInsensitive)) return exporter;
    return nullptr;
}

QFileInfoList FilesBeside(const QString& strFileName)
{
    const QFileInfo target(strFileName);
    const QString base = target.completeBaseName();
    const QFileInfoList files = target.dir().entryInfoList(QDir::Files | QDir::Hidden, QDir::Name);
    QFileInfoList beside;
    for (const QFileInfo& file : files) {
        const QString name = file.fileName();
        const bool isAlike =
            name.startsWith(base) && name.size() > base.size() && !name[base.size()].isLetterOrNumber();
        if (isAlike && file != target) beside += file;
    }
    return beside;
}

} // namespace Host
