#include "reference/desk/Exporting.h"

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IScene.h"
#include "lumenta/interfaces/IUserInterface.h"
#include "lumenta/platform/IFileDialog.h"
#include "reference/host/services/ModelExporters.h"

#include <memory>

namespace Host {

void ExportModel(const IScene& scene, const PluginHost& plugins, IUserInterface& ui)
{
    const std::vector<ModelExporter> exporters = ModelExporters(plugins);
    if (exporters.empty()) throw ExporterException(QStringLiteral("No plug-in that writes models is there"));
    const std::unique_ptr<IFileDialog> dialog(ui.CreateFileDialog(eFileDialogSave, nullptr));
    for (const ModelExporter& exporter : exporters)
        for (const sModelExportFormat& format : exporter->GetFormats())
            dialog->AddFilter(format.strTitle, format.extensions);
    const QString path = dialog->Show(QStringLiteral("Export"), QString(), QString());
    if (path.isEmpty()) return;
    const ModelExporter exporter = ExporterFor(exporters, path);
    if (!exporter) throw ExporterException(QStringLiteral("'%1': no plug-in writes such files").arg(path));
    QStringList beside; // the dialog has asked for the file alone
    const QFileInfoList files = FilesBeside(path);
    for (const QFileInfo& file : files)
        beside += file.fileName();
    if (!beside.isEmpty()
        && !ui.AskYesNo(
            QStringLiteral("These files might be replaced, too: %1\nGo on?").arg(beside.join(QStringLiteral(", ")))))
        return;
    exporter->Export(scene, path, QString());
    ui.ShowStatus(QStringLiteral("Exported '%1'").arg(path));
    const QStringList warnings = exporter->GetWarnings();
    if (!warnings.isEmpty()) ui.ShowWarning(warnings.join(QLatin1Char('\n')));
}

} // namespace Host
