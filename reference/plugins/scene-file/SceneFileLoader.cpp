#include "reference/plugins/scene-file/SceneFileLoader.h"

#include "lumenta/foundation/Exceptions.h"
#include "reference/plugins/scene-file/DocumentFile.h"
#include "reference/plugins/scene-file/SceneBuilder.h"

#include <new>

namespace Host {

namespace {

LoadingException CannotOpen(const QString& fileName, const QString& reason)
{
    return LoadingException(QStringLiteral("'%1' can't be opened: %2").arg(fileName, reason));
}

StoredDocument ReadDocument(const QString& fileName)
{
    try {
        return ParseDocument(ReadDocumentFile(fileName));
    } catch (const Flaw& flaw) {
        throw CannotOpen(fileName, flaw.GetText());
    } catch (const std::bad_alloc&) {
        throw CannotOpen(fileName, QStringLiteral("it does not fit in memory"));
    }
}

} // namespace

SceneFileLoader::SceneFileLoader(IImageManager* pImages)
    : m_pImages(pImages)
{
}

bool SceneFileLoader::CanLoad(const QString& strFileName) const
{
    return IsDocumentFile(strFileName);
}

void SceneFileLoader::Load(const QString& strFileName, IScene& scene)
{
    m_warnings.clear();
    StoredDocument document = ReadDocument(strFileName);
    BuildScene(document, strFileName, scene, m_pImages, m_warnings);
}

} // namespace Host
