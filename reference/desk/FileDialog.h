#pragma once

#include "lumenta/interfaces/IUserInterface.h"
#include "lumenta/platform/IFileDialog.h"

#include <QPointer>
#include <QWidget>

#include <vector>

class ISettings;
class QFileDialog;

namespace Host {

/// A dialog of the toolkit's own, alike on every desktop.
///
/// Where it is to start on nothing in particular, it starts in the folder of the
/// file that was chosen last.
class FileDialog final : public IFileDialog {
public:
    /// \param nKind     an eFileDialogKind; any other number opens a file
    /// \param pParent   what it stands before; null for nothing
    /// \param pSettings remembers the last folder; null for none
    FileDialog(int nKind, QWidget* pParent, ISettings* pSettings);

    /// Where there are several, one of all of them stands before them when a file
    /// is opened. A file to save gets the first extension of the chosen one, if
    /// it was given none.
    void AddFilter(const QString& description, const QStringList& extensions) override;

    QString Show(const QString& title, const QString& text, const QString& folder) override;

private:
    struct Filter {
        QString text;
        QStringList patterns;
        QString suffix;
    };

    void Prepare(QFileDialog& dialog) const;

    const int m_nKind;
    const QPointer<QWidget> m_pParent;
    ISettings* const m_pSettings;
    std::vector<Filter> m_filters;
};

} // namespace Host
