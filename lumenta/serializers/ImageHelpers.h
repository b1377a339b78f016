#pragma once

#include "lumenta/Export.h"

#include <QString>

class IImage;
class IImageManager;
class IImageSaver;
class IUserInterface;

/// \file
/// What everyone who opens or saves images would otherwise write anew.
///
/// Formats are found by the suffix of the file name as those of scenes are
/// (SceneSerializers.h), in the manager's order. Managers and user interfaces
/// must not be null; what they throw passes through. On their thread.

/// A new saver for the file, which the caller owns; null where the manager could
/// not make it.
/// \throws ImageFormatException "Can't find saving plugin for extension '<suffix>'"
///         and, on a second line, "File name to save: <fileName>": no format fits
LUMENTA_EXPORT IImageSaver* CreateImageSaverByFilename(const IImageManager* manager, const QString& fileName);

/// Loads images whose files may have moved since their paths were stored.
///
/// Keeps a reference to the base folder, not a copy: the string must outlive the
/// helper, and what it becomes meanwhile counts. Hand over a variable.
class LUMENTA_EXPORT ImageLoadingHelper {
public:
    /// Asks nothing yet.
    ImageLoadingHelper(IImageManager* manager, const QString& baseFolder);

    /// The image, as the manager loads and keeps it; null where there is none.
    ///
    /// An empty file name stands for no image: the manager is not asked.
    /// \param resolvedFileName what TryToFindFileOptimistic() makes of the name and
    ///        the base folder: where the file was found, or would have to be. For an
    ///        empty name it stays as it was.
    IImage* LoadImage(const QString& fileName, QString& resolvedFileName);

private:
    IImageManager* m_pManager;
    const QString& m_baseFolder;
};

/// Asks the user for an image of any format that can be loaded.
/// \param folder where the dialog starts: a folder, or a file to start on
/// \return empty where it was cancelled
LUMENTA_EXPORT QString ShowOpenDialogForImages(IImageManager* manager, IUserInterface* ui, const QString& folder);

/// Whether any format that can be loaded has the file's suffix. The file need not exist.
LUMENTA_EXPORT bool CanLoadImage(const QString& fileName, IImageManager* manager);
