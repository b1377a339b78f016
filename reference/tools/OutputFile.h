#pragma once

#include <QByteArray>
#include <QString>

namespace Host {

/// Finds out, before long work, whether a file could be written there: the
/// folder exists and may be written to, and the name is not taken by a folder
/// or a device.
/// \throws Failure the subject is `fileName`
void CheckOutputFile(const QString& fileName);

/// The one name, behind all links, of the file that writing there would make or replace.
QString TargetPath(const QString& fileName);

/// Refuses to write what is read: that would destroy it.
/// \param inputs    files; those that don't exist are passed over
/// \param inputText what they are, to end the sentence "would overwrite ..."
/// \throws Failure the subject is the output
void KeepInputs(const QStringList& inputs, const QStringList& outputs, const QString& inputText);

/// Writes a file aside first, then renames it, so that under `fileName` stands
/// all of it, or what stood there before.
/// \throws Failure the subject is `fileName`
void WriteOutputFile(const QString& fileName, const QByteArray& bytes);

} // namespace Host
