#include "lumenta/properties/FileSource.h"

#include "lumenta/interfaces/IImageManager.h"
#include "lumenta/serializers/ImageHelpers.h"

FileSource::FileSource(IImageManager* pManager, IUserInterface* pUserInterface)
    : m_pManager(pManager)
    , m_pUserInterface(pUserInterface)
{
}

FileSource::~FileSource() = default;

QStringList FileSource::GetOfferedFiles()
{
    m_offered = m_pManager->GetRecentFiles();
    return m_offered;
}

bool FileSource::ShowOpenDialog(QObject*, QString& strPath)
{
    const QString chosen = ShowOpenDialogForImages(m_pManager, m_pUserInterface, strPath);
    if (chosen.isEmpty()) return false;
    strPath = chosen;
    return true;
}

bool FileSource::AcceptsFile(const QString& strFileName)
{
    return CanLoadImage(strFileName, m_pManager);
}
