#pragma once

#include "reference/host/services/Document.h"
#include "reference/tools/CommandLine.h"
#include "reference/tools/ProgressBar.h"

#include <memory>

namespace Host {

/// How documents are explained in the manuals that take them.
QString DocumentSourceText();

/// Whether the source is a document rather than a model: a scene file, or
/// something built in that a generator makes. Its beginning and its end decide;
/// it need not exist.
bool IsDocument(const QString& source);

/// An empty document, whose user interface answers no question.
std::unique_ptr<Document> NewDocument();

/// Opens a document, or any model as one. What could not be taken over is
/// warned of on standard error.
/// \throws Failure the subject is `source`
std::unique_ptr<Document> OpenDocument(const QString& source, ProgressBar& bar);

/// The same, with the warnings for the caller.
std::unique_ptr<Document> OpenDocument(const QString& source, ProgressBar& bar, QStringList& warnings);

/// Refuses options that are there but make sense for models alone, where the
/// source is a document.
/// \throws UsageError
void RefuseModelOptions(const Arguments& arguments, const QString& source);

/// The files that a document was read from, and those of its textures. Some may
/// not exist.
QStringList InputFiles(const IScene& scene, const QString& source);

} // namespace Host
