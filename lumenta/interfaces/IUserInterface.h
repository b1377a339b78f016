#pragma once

#include "lumenta/Export.h"
#include "lumenta/foundation/Color.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QUrl>

class IFileDialog;

/// What a file dialog is for. IUserInterface::CreateFileDialog() takes it as a
/// number, and may be given others by newer plug-ins: those open a file.
enum eFileDialogKind {
    eFileDialogAny = 0,       ///< One existing file.
    eFileDialogOpenImage = 1, ///< An image.
    eFileDialogSave = 2,      ///< A file to write, which may exist.
    eFileDialogFolder = 3,    ///< An existing folder; filters don't count.
    eFileDialogOpenModel = 4  ///< A model.
};

/// How plug-ins talk to the user.
///
/// **Who implements it:** the host, which knows widgets; this library doesn't.
/// A host without windows answers every question as if it had been cancelled.
/// **Who calls it:** plug-ins, and the library's file dialogs.
/// **Thread:** the application's. Questions block until they are answered, and
/// may let other events through meanwhile. **Ownership:** the host's.
class LUMENTA_EXPORT IUserInterface : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~IUserInterface() override;

    // Telling.

    /// Something to know.
    virtual void ShowMessage(const QString& strText) = 0;
    /// Something that went on all the same.
    virtual void ShowWarning(const QString& strText) = 0;
    /// Something that could not be done.
    virtual void ShowError(const QString& strText) = 0;

    /// One line at the edge of the window, until the next one.
    virtual void ShowStatus(const QString& strText) = 0;

    // Asking. Each answers false when it was cancelled, and then leaves the
    // value as it was.

    /// \return true for yes; a cancelled question is a no
    virtual bool AskYesNo(const QString& strQuestion) = 0;

    /// \param strText comes as the proposal, goes as the answer
    virtual bool AskText(const QString& strTitle, const QString& strLabel, QString& strText) = 0;

    /// \param nChoice index into `choices`
    virtual bool AskChoice(const QString& strTitle, const QStringList& choices, int& nChoice) = 0;

    /// \param color comes as the proposal, goes as the answer
    virtual bool AskColor(ColorF& color) = 0;

    /// A dialog that the caller shows and deletes. Never null: a host without
    /// windows makes one that is always cancelled.
    /// \param nKind   an eFileDialogKind
    /// \param pParent what the dialog stands before; null for the main window
    virtual IFileDialog* CreateFileDialog(int nKind, QObject* pParent) = 0;

    // Working. Works may hold further ones; each counts as a part of its outer one.

    /// A work begins that takes its time.
    virtual void BeginProgress(const QString& strTitle) = 0;

    /// \return false once the user wants to stop; without windows never
    virtual bool SetProgress(int nPercent) = 0;

    /// Ends the work that began last.
    virtual void EndProgress() = 0;

    // The surroundings.

    /// To be the parent of windows. Null where there is none.
    virtual QObject* GetMainWindow() const = 0;

    /// Shows an address to the user: a page in a browser, a folder.
    /// \return false where that can't be done
    virtual bool OpenUrl(const QUrl& url) = 0;
};
