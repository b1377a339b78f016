#pragma once

// Private to the loader: what it has to say about a model.

#include <QString>
#include <QStringList>

namespace Host {

/// Collects what of a model could not be taken over, and refuses models.
class Report {
public:
    explicit Report(const QString& strFileName);

    /// Notes a sentence for a person; the same sentence is kept once.
    void Warn(const QString& strSentence);

    /// \throws LoadingException always: names the file, then the reason
    [[noreturn]] void Refuse(const QString& strReason) const;

    const QStringList& Warnings() const { return m_warnings; }

private:
    QString m_strFileName;
    QStringList m_warnings;
};

} // namespace Host
