#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

namespace Host {

/// A material as a file holds it: every value a text, also one that no material
/// takes.
struct MaterialFile {
    QString name;
    QMap<QString, QVariant> parameters;
};

/// \throws Failure the subject is `fileName`
MaterialFile ReadMaterialFile(const QString& fileName);

/// Writes a file that can be read back: a material without parameters gets one
/// that says what would hold anyway. Written as WriteOutputFile() does.
/// \throws Failure the subject is `fileName`; also where the texts hold what no
///         such file can
void WriteMaterialFile(const QString& fileName, const MaterialFile& material);

} // namespace Host
