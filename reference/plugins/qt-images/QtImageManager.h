#pragma once

#include "lumenta/interfaces/IImageManager.h"
#include "reference/host/images/Image.h"

#include <QPointer>

class IApplicationContext;

namespace Host {

/// Images over all formats that Qt and its plug-ins read and write.
///
/// An image is known by its file name: the canonical path of its file, or else
/// the name that it was decoded under. FindImage() and LoadImageFile() take any
/// path that leads to the file. What is in memory under a name is answered also
/// after its file has gone; so images that a model embeds can be asked for like
/// files. IImage::SetFileName() changes what an image is found by.
///
/// Pictures come upright, as the camera that took them noted (EXIF). The formats
/// are those that are there when the manager is made.
class QtImageManager final : public IImageManager {
    Q_OBJECT

public:
    /// \param context keeps the recent files from one run to the next, where it
    ///                has settings then; outlives the manager
    explicit QtImageManager(const IApplicationContext& context);
    /// Ends all images that were not released.
    ~QtImageManager() override;

    IImage* CreateImage(const QSize& size) override;
    std::vector<ImageSaverInfo> GetSaverFormats() const override { return m_saverFormats; }
    IImage* FindImage(const QString& fileName) const override;
    std::vector<ImageLoaderInfo> GetLoaderFormats() const override { return m_loaderFormats; }
    /// The suffix of the name helps with formats that have no mark, like TGA.
    /// Images without a name are never shared.
    IImage* DecodeImage(const QByteArray& data, const QString& strName) override;
    IImageSaver* CreateSaver(const ImageSaverInfo& info) const override;
    /// What is not one of the manager's images is passed over.
    void ReleaseImage(IImage* pImage) override;
    IImage* LoadImageFile(const QString& fileName) override;
    bool ReloadImage(IImage* pImage) override;
    /// At most 20, without those that have gone since.
    QStringList GetRecentFiles() const override;

private:
    struct Entry {
        QPointer<Image> image; ///< Owned; null where somebody else ended it.
        int nAskers;
    };

    Entry* Find(const QString& fileName) const;
    IImage* Add(const QImage& image, const QString& strName);
    QStringList RecentFiles() const;
    void NoteRecentFile(const QString& fileName);

    const IApplicationContext& m_context;
    const std::vector<ImageLoaderInfo> m_loaderFormats;
    const std::vector<ImageSaverInfo> m_saverFormats;
    mutable std::vector<Entry> m_entries;
    QStringList m_recentFiles; ///< Where the application has no settings.
};

} // namespace Host
