#include "lumenta/serializers/ImageHelpers.h"

#include "lumenta/files/Paths.h"
#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IImageManager.h"
#include "lumenta/interfaces/IUserInterface.h"
#include "lumenta/platform/IFileDialog.h"

#include <QFileInfo>

#include <memory>

IImageSaver* CreateImageSaverByFilename(const IImageManager* manager, const QString& fileName)
{
    const QString suffix = QFileInfo(fileName).suffix();
    for (const ImageSaverInfo& info : manager->GetSaverFormats()) {
        if (info.extension.compare(suffix, Qt::CaseInsensitive) == 0) return manager->CreateSaver(info);
    }
    const QString format = QStringLiteral("Can't find saving plugin for extension '%1'\nFile name to save: %2");
    throw ImageFormatException(format.arg(suffix).arg(fileName)); // clazy:exclude=qstring-arg
}

ImageLoadingHelper::ImageLoadingHelper(IImageManager* manager, const QString& baseFolder)
    : m_pManager(manager)
    , m_baseFolder(baseFolder)
{
}

IImage* ImageLoadingHelper::LoadImage(const QString& fileName, QString& resolvedFileName)
{
    if (fileName.isEmpty()) return nullptr;
    resolvedFileName = TryToFindFileOptimistic(fileName, m_baseFolder);
    return m_pManager->LoadImageFile(resolvedFileName);
}

QString ShowOpenDialogForImages(IImageManager* manager, IUserInterface* ui, const QString& folder)
{
    const std::unique_ptr<IFileDialog> dialog(ui->CreateFileDialog(eFileDialogOpenImage, nullptr));
    for (const ImageLoaderInfo& format : manager->GetLoaderFormats())
        dialog->AddFilter(format.description, format.extensions);
    return dialog->Show(QStringLiteral("Open File"), QString(), folder);
}

bool CanLoadImage(const QString& fileName, IImageManager* manager)
{
    const QString suffix = QFileInfo(fileName).suffix();
    for (const ImageLoaderInfo& format : manager->GetLoaderFormats()) {
        if (format.extensions.contains(suffix, Qt::CaseInsensitive)) return true;
    }
    return false;
}
