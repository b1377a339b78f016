#pragma once

#include "lumenta/Export.h"

#include <QObject>
#include <QString>
#include <QStringList>

/// What a property panel needs to edit the name of a file.
///
/// **Who implements it:** this library, for images and for models. **Who calls
/// it:** the panels of the host.
/// **Thread:** the application's. **Ownership:** belongs to the panel that asked
/// for it.
class LUMENTA_EXPORT IFileSource : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~IFileSource() override;

    /// File names to choose from without a dialog.
    virtual QStringList GetOfferedFiles() = 0;

    /// Asks for a file.
    /// \param pParent what the dialog stands before
    /// \param strPath comes as the present file, goes as the chosen one
    /// \return false where it was cancelled; then the path is as it was
    virtual bool ShowOpenDialog(QObject* pParent, QString& strPath) = 0;

    /// Whether the file's suffix is one of those that can be loaded.
    virtual bool AcceptsFile(const QString& strFileName) = 0;
};
