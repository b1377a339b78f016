#pragma once

#include "lumenta/Export.h"

#include <QByteArray>
#include <QObject>
#include <QSize>
#include <QString>
#include <QStringList>

#include <vector>

class IImage;
class IImageSaver;

/// A format that images can be written in.
struct ImageSaverInfo {
    QString title;     ///< Shown to people.
    QString id;        ///< Tells the manager which saver to make.
    QString extension; ///< Without the dot.
};

/// A format that images can be read from.
struct ImageLoaderInfo {
    QString title;          ///< Shown to people.
    QString description;    ///< What a file dialog shows for it.
    QStringList extensions; ///< Without the dot.
};

/// Where images come from and go to: it knows the plug-ins that read and write
/// them, and holds what is loaded, so that one file is in memory once.
///
/// **Who implements it:** the host, or a plug-in for it. **Who calls it:** materials, panels,
/// plug-ins, and the library's image helpers.
/// **Thread:** the application's. **Ownership:** images belong to the manager
/// until ReleaseImage(); savers belong to the caller.
class LUMENTA_EXPORT IImageManager : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~IImageManager() override;

    // Places 2, 4, 6, 8 and 10 are fixed by the library's helpers.

    /// A new, transparent image, without a file.
    /// \throws InvalidParameterException the size is empty
    /// \throws OutOfMemoryException      there is no room for its pixels
    virtual IImage* CreateImage(const QSize& size) = 0;

    /// In order of registration: the first that fits a suffix is taken.
    virtual std::vector<ImageSaverInfo> GetSaverFormats() const = 0;

    /// The loaded image of a file, or null. Loads nothing, and doesn't count as
    /// asking for it.
    virtual IImage* FindImage(const QString& fileName) const = 0;

    /// In order of registration.
    virtual std::vector<ImageLoaderInfo> GetLoaderFormats() const = 0;

    /// An image from the bytes of a file, as models embed them.
    /// \param strName under which FindImage() finds it. A name that is in use
    ///                answers the image of that name, and decodes nothing.
    /// \throws ImageFormatException they are of no format that anyone reads
    virtual IImage* DecodeImage(const QByteArray& data, const QString& strName) = 0;

    /// Null where the id is not one of the manager's.
    virtual IImageSaver* CreateSaver(const ImageSaverInfo& info) const = 0;

    /// The image is no longer needed by whoever asked for it, by CreateImage(),
    /// DecodeImage() or LoadImageFile(). The last of those who asked ends it;
    /// slots that still hold it are emptied.
    virtual void ReleaseImage(IImage* pImage) = 0;

    /// The image of a file, loaded where it is not yet.
    /// \return null where there is no such file
    /// \throws ImageFormatException no plug-in can read it
    virtual IImage* LoadImageFile(const QString& fileName) = 0;

    /// Reads the file of a loaded image again, into the same object.
    /// \return false where it can't be read any more; the image stays as it was
    virtual bool ReloadImage(IImage* pImage) = 0;

    /// Files that were loaded lately, the last one first: what panels offer.
    virtual QStringList GetRecentFiles() const = 0;
};
