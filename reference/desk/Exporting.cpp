#include "reference/desk/Exporting.h"

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IExporter.h"
#include "lumenta/interfaces/IScene.h"
#include "lumenta/interfaces/IUserInterface.h"
#include "lumenta/platform/IFileDialog.h"
#include "reference/host/IModelExporter.h"
#include "reference/host/PluginHost.h"

#include <QDir>
#include <QFileInfo>

#include <memory>

namespace Host {

namespace {

using Exporters = std::vector<std::shared_ptr<IModelExporter>>;

Exporters AllExporters(const PluginHost& plugins)
{
    Exporters exporters;
    for (const PluginService& service : plugins.ServicesOf<IExporter>()) {
        const std::shared_ptr<IExporter> exporter = plugins.CreateService<IExporter>(service.id);
        if (auto* const pModels = qobject_cast<IModelExporter*>(exporter.get()))
            exporters.emplace_back(exporter, pModels);
    }
    if (exporters.empty()) throw ExporterException(QStringLiteral("No plug-in that writes models is there"));
    return exporters;
}

IModelExporter& ExporterFor(const QString& path, const Exporters& exporters)
{
    const QString suffix = QFileInfo(path).suffix();
    for (const std::shared_ptr<IModelExporter>& exporter : exporters)
        for (const sModelExportFormat& format : exporter->GetFormats())
            if (format.extensions.contains(suffix, Qt::CaseInsensitive)) return *exporter;
    throw ExporterException(QStringLiteral("'%1': no plug-in writes such files").arg(path));
}

/// What an export might replace beside the file, since some formats take several
/// whose names begin alike. The dialog has asked for the file alone.
QStringList FilesBeside(const QString& path)
{
    const QFileInfo target(path);
    const QString base = target.completeBaseName();
    QStringList names;
    for (const QString& name : target.dir().entryList(QDir::Files | QDir::Hidden, QDir::Name))
        if (name != target.fileName() && name.startsWith(base) && name.size() > base.size()
            && !name.at(base.size()).isLetterOrNumber())
            names += name;
    return names;
}

} // namespace

void ExportModel(const IScene& scene, const PluginHost& plugins, IUserInterface& ui)
{
    const Exporters exporters = AllExporters(plugins);
    const std::unique_ptr<IFileDialog> dialog(ui.CreateFileDialog(eFileDialogSave, nullptr));
    for (const std::shared_ptr<IModelExporter>& exporter : exporters)
        for (const sModelExportFormat& format : exporter->GetFormats())
            dialog->AddFilter(format.strTitle, format.extensions);
    const QString path = dialog->Show(QStringLiteral("Export"), QString(), QString());
    if (path.isEmpty()) return;
    IModelExporter& exporter = ExporterFor(path, exporters);
    const QStringList beside = FilesBeside(path);
    if (!beside.isEmpty()
        && !ui.AskYesNo(
            QStringLiteral("These files might be replaced, too: %1\nGo on?").arg(beside.join(QStringLiteral(", ")))))
        return;
    exporter.Export(scene, path, QString());
    ui.ShowStatus(QStringLiteral("Exported '%1'").arg(path));
    const QStringList warnings = exporter.GetWarnings();
    if (!warnings.isEmpty()) ui.ShowWarning(warnings.join(QLatin1Char('\n')));
}

} // namespace Host
