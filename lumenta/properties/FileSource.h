#pragma once

#include "lumenta/platform/IFileSource.h"

class IImageManager;
class IUserInterface;

/// Offers images to a property panel.
///
/// Image manager and user interface must be there whenever it is asked, and not
/// null: a host that lacks one of them offers no such property. What they throw
/// passes through. On the document's thread.
class LUMENTA_EXPORT FileSource : public IFileSource {
    Q_OBJECT

public:
    /// Keeps both addresses; neither is asked yet.
    FileSource(IImageManager* pManager, IUserInterface* pUserInterface);
    ~FileSource() override;

    /// The images that were loaded lately, as the manager tells them now.
    QStringList GetOfferedFiles() override;

    /// The dialog of ShowOpenDialogForImages(), before the main window: `pParent`
    /// does not count.
    bool ShowOpenDialog(QObject* pParent, QString& strPath) override;

    /// As CanLoadImage(): a file without a suffix only where a format lists the
    /// empty one.
    bool AcceptsFile(const QString& strFileName) override;

private:
    IImageManager* m_pManager;
    IUserInterface* m_pUserInterface;
    QStringList m_offered; ///< As last asked for.
};
