#include "docs/snippets/Snippets.h"

#include "lumenta/platform/IFileSource.h"
#include "lumenta/platform/IPropertyListHelper.h"

#include <memory>

//! [properties]
/// What the button beside a file's name does. False where the name stays.
bool Browse(IPropertyListHelper& helper, const QString& kind, QObject* pPanel, QString& path)
{
    const std::unique_ptr<IFileSource> source(helper.CreateFileSource(kind));
    QString chosen = path;
    if (!source || !source->ShowOpenDialog(pPanel, chosen) || !source->AcceptsFile(chosen)) return false;
    path = chosen;
    return true;
}
//! [properties]
