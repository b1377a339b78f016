#pragma once

#include "lumenta/Export.h"

#include <QString>

class IImage;

/// Writes images of one format.
///
/// **Who implements it:** a plug-in. **Who calls it:** whoever had it created
/// (IImageManager::CreateSaver); it belongs to them. **Thread:** theirs.
class LUMENTA_EXPORT IImageSaver {
public:
    virtual ~IImageSaver();

    /// \param nQuality 0 to 100, or −1 for the format's usual one; formats
    ///                 without loss pass it over
    /// \throws FileException the file can't be written; one that was there
    ///         before is untouched
    virtual void Save(const IImage& image, const QString& strFileName, int nQuality) = 0;

protected:
    IImageSaver() = default;
    IImageSaver(const IImageSaver&) = default;
    IImageSaver& operator=(const IImageSaver&) = default;
};
