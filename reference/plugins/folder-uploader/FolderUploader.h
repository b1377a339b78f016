#pragma once

#include "lumenta/interfaces/IUploader.h"

#include <memory>

namespace Host {

/// Copies files into a folder, such as one that is shared or published.
///
/// Settings:
/// - "folder" (text): an existing folder; without one `requestSettings` comes.
/// - "name" (text): what the file is called there; see TargetName().
/// - "overwrite" (switch, off): replaces a file of that name. Otherwise a new one
///   gets a number: "picture (2).png".
/// - "pin" (text): see below.
///
/// A folder that may not be written to answers `failedAuth`. So does one that
/// holds a file ".upload-pin" if the pin is not the text of that file: its owner
/// wants uploads from people only who may look into the folder. Without the
/// setting "pin" the address of the file is told by `urlForPin`. A pin that nobody
/// waits for is passed over.
///
/// The file appears when it is complete. Signals come from the event loop, that of
/// Cancel() apart; slots may call any operation and delete the uploader. Whoever
/// deletes one that has not ended ends the upload without a signal.
///
/// Has no meta-object of its own: it is an IUploader, in whichever module.
class FolderUploader final : public IUploader {
public:
    explicit FolderUploader(QObject* pParent = nullptr);
    ~FolderUploader() override;

    void SetPin(const QString& strPin) override;
    void Upload(const QString& strFileName, const QMap<QString, QVariant>& settings) override;
    void Cancel() override;

private:
    struct Job;
    using Step = void (FolderUploader::*)();

    /// \param step what throws an Exception in it ends the upload
    void Later(Step step);
    void Begin();
    void Open();
    void CopyPiece();
    void Finish();
    void EndWith(const QString& strError);

    std::unique_ptr<Job> m_job; ///< Null while nothing is uploaded.
};

} // namespace Host
