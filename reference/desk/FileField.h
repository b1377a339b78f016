#pragma once

#include "lumenta/platform/IFileSource.h"

#include <QComboBox>

#include <functional>
#include <memory>

class IUserInterface;

namespace Host {

/// Edits the name of a file: a line to type into with the files that the source
/// offers, a button for its dialog, and a target for files that are dropped.
///
/// Only names that the source accepts are told of; of any other the user is told,
/// and the field shows what it showed before. An empty name means no file.
class FileField final : public QWidget {
    Q_OBJECT

public:
    /// \param source its services outlive the field
    /// \param ui     outlives the field
    FileField(std::unique_ptr<IFileSource> source, IUserInterface& ui, QWidget* pParent = nullptr);

    /// \param shown what the field reads
    /// \param path  where that is: what the dialog starts on
    void SetFile(const QString& shown, const QString& path);

Q_SIGNALS:
    /// Typed, chosen or dropped, and accepted.
    void fileChosen(const QString& path);

protected:
    void dragEnterEvent(QDragEnterEvent* pEvent) override;
    void dropEvent(QDropEvent* pEvent) override;

private:
    void Take(const QString& path);
    void Browse();

    const std::unique_ptr<IFileSource> m_source;
    IUserInterface& m_ui;
    QComboBox* m_pLine;
    QString m_shown;
    QString m_path;
};

} // namespace Host
