#include "docs/snippets/Snippets.h"

#include "lumenta/files/Paths.h"

#include <QFileInfo>

//! [keep]
/// What a document writes down for a texture. Both ways are made canonical first:
/// a link on one of them would make the file lie outside.
QString ReferenceTo(const QString& texture, const QString& documentFile)
{
    const QString folder = SimplifyFilename(QFileInfo(documentFile).absolutePath());
    return GetRelativePath(folder, SimplifyFilename(texture));
}
//! [keep]

//! [follow]
/// Where that texture is now: where the reference points, or beside the document.
/// Empty if it is in neither place.
QString FileOf(const QString& reference, const QString& documentFile)
{
    return TryToFindFilePessimistic(reference, QFileInfo(documentFile).absolutePath());
}
//! [follow]

//! [rebase]
/// What a copy of the document, saved somewhere else, writes down.
QString Rebased(const QString& reference, const QString& oldDocument, const QString& newDocument)
{
    const QString texture = FileOf(reference, oldDocument);
    return texture.isEmpty() ? reference : ReferenceTo(texture, newDocument);
}
//! [rebase]
