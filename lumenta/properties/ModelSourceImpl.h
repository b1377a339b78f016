#pragma once

#include "lumenta/platform/IFileSource.h"

class IModelFormats;
class IUserInterface;

/// Offers 3D models to a property panel.
///
/// Formats and user interface must be there whenever it is asked, and not null: a
/// host that lacks one of them offers no such property. What they throw passes
/// through. On the document's thread.
class LUMENTA_EXPORT ModelSourceImpl : public IFileSource {
    Q_OBJECT

public:
    /// Keeps both addresses; neither is asked yet.
    ModelSourceImpl(const IModelFormats* pFormats, IUserInterface* pUserInterface);
    ~ModelSourceImpl() override;

    /// None: nobody remembers models.
    QStringList GetOfferedFiles() override;

    /// Starts on the present path, before `pParent`, with a filter for every format.
    bool ShowOpenDialog(QObject* pParent, QString& strPath) override;

    /// By the suffix, as CanLoadImage() does it for images: a file without one only
    /// where a format lists the empty one.
    bool AcceptsFile(const QString& strFileName) override;

private:
    const IModelFormats* m_pFormats;
    IUserInterface* m_pUserInterface;
    QStringList m_offered; ///< Stays empty.
};
