#pragma once

#include "lumenta/Export.h"

#include <QString>
#include <QStringList>

/// A dialog that asks for the name of a file.
///
/// **Who implements it:** the host (IUserInterface::CreateFileDialog). **Who
/// calls it:** whoever had it created, and owns it: filters first, then Show(), once
/// or more; then deletes it.
/// **Thread:** the application's; Show() blocks until the dialog is closed.
class LUMENTA_EXPORT IFileDialog {
public:
    virtual ~IFileDialog();

    /// Adds a kind of file to choose from, behind those before.
    /// \param extensions without the dot
    virtual void AddFilter(const QString& description, const QStringList& extensions) = 0;

    /// \param title  caption of the dialog
    /// \param text   an explanation within it; empty for none
    /// \param folder where it starts: a folder, or a file to start on
    /// \return the chosen path; empty where it was cancelled
    virtual QString Show(const QString& title, const QString& text, const QString& folder) = 0;

protected:
    IFileDialog() = default;
    IFileDialog(const IFileDialog&) = default;
    IFileDialog& operator=(const IFileDialog&) = default;
};
