#pragma once

#include "lumenta/Export.h"

#include <QMap>
#include <QMimeData>
#include <QString>
#include <QStringList>
#include <QVariant>

/// What a drag of a material, or of a texture swatch, carries.
///
/// A drop target within the application takes name and parameters from the
/// object; other applications get the name as a text, and a file. Parameters
/// that hold "texture" stand for that image, and it is the file; otherwise the
/// material is written to `<temporary folder>/lumenta/<name>.mtl`, when the file
/// is first asked for.
///
/// Who creates it owns it until it is handed to a drag. Application's thread.
class LUMENTA_EXPORT MaterialMimeData : public QMimeData {
    Q_OBJECT

public:
    /// Keeps copies; no change to the caller's map reaches them, not even through
    /// a reference into it that is older than this object.
    MaterialMimeData(const QMap<QString, QVariant>& parameters, const QString& name);

    /// Removes the file if Cleanup() was called; says nothing where it cannot.
    ~MaterialMimeData() override;

    /// Whether it is one of the two of formats(), in exactly these letters.
    bool hasFormat(const QString& mimeType) const override;

    /// "text/uri-list", then "text/plain".
    QStringList formats() const override;

    /// The name for "text/plain"; for "text/uri-list" a list with one QUrl, the
    /// form that QMimeData::urls() reads. `type` is not asked for either.
    ///
    /// The name becomes part of the file's path as it stands; it replaces a file
    /// that is there. Throws FileException where the material cannot be written,
    /// as with a slash in its name; it passes through QMimeData::urls() and data().
    /// The path stays then, so that whoever asks again gets it, without the file.
    QVariant retrieveData(const QString& mimeType, QVariant::Type type) const override;

    const QMap<QString, QVariant>& GetParameters() const; ///< As they came.
    const QString& GetName() const;                       ///< Likewise.

    /// False where the parameters hold "texture". Even an empty one: there is no
    /// image to offer then, and the material is written.
    bool IsMaterial() const;

    /// The absolute folder of the file. Means nothing before a material is written.
    QString GetBaseFolder() const;

    /// Has the destructor remove the file; itself it removes nothing. Mind that
    /// the image goes the same way where the parameters hold "texture", and that
    /// callers depend on it.
    void Cleanup();

private:
    bool removeFileOnDestroy = false;
    mutable QString filePath; ///< Empty until known.
    QMap<QString, QVariant> parameters;
    QString name;
    bool isMaterial = true;
};
