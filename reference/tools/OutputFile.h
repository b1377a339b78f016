#pragma once

#include <QByteArray>
#include <QString>

namespace Host {

/// Finds out, before long work, whether a file could be written there, as
/// ObstacleTo() does.
/// \throws Failure the subject is `fileName`
void CheckOutputFile(const QString& fileName);

/// Refuses to write what is read: that would destroy it.
/// \param inputs    files; those that don't exist are passed over
/// \param inputText what they are, to end the sentence "would overwrite ..."
/// \throws Failure the subject is the output
void KeepInputs(const QStringList& inputs, const QStringList& outputs, const QString& inputText);

/// Writes a file by ReplaceFile().
/// \throws Failure the subject is `fileName`
void WriteOutputFile(const QString& fileName, const QByteArray& bytes);

} // namespace Host
