#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <vector>

class IScene;

/// A format that models can be written in.
struct sModelExportFormat {
    QString strId; ///< Tells the exporter which one is meant.
    QString strTitle;
    QString strDescription; ///< What a file dialog shows for it.
    QStringList extensions; ///< Without the dot, the usual one first.
};

/// What an exporter offers that writes a scene's meshes for other programs.
///
/// **Who implements it:** a plug-in, in the class of its exporter, beside
/// IExporter. That class must say `Q_INTERFACES(IModelExporter)`: without it the
/// cast is null. **Who calls it:** whoever has got it by
/// `qobject_cast<IModelExporter*>(pExporter)`.
/// **Thread:** the scene's. **Ownership:** lives and dies with its exporter.
class IModelExporter {
public:
    /// What it can write, the same all its life, the preferred ones first.
    virtual const std::vector<sModelExportFormat>& GetFormats() const = 0;

    /// Writes what is visible of a scene as it stands, animations not included.
    /// A format of several files writes the others beside, under names that begin
    /// with that of the file. Those that exist are replaced, all or none.
    /// \param strFormatId of one of GetFormats(); empty for the first whose
    ///                    extension the file has
    /// \throws ExporterException nothing was written; the text names the file and
    ///                           what is wrong
    virtual void Export(const IScene& scene, const QString& strFileName, const QString& strFormatId) = 0;

    /// What the last Export() could not take over, in words for a person.
    virtual QStringList GetWarnings() const = 0;

protected:
    IModelExporter() = default;
    IModelExporter(const IModelExporter&) = default;
    IModelExporter& operator=(const IModelExporter&) = default;
    ~IModelExporter() = default; // nobody deletes an exporter by one of its sides
};

Q_DECLARE_INTERFACE(IModelExporter, "com.quillwright.lumenta.IModelExporter")
