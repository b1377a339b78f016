#pragma once

#include "lumenta/interfaces/ILog.h"

#include <QFile>
#include <QMutex>

#include <vector>

namespace Host {

/// A writer that logs in turn does so in vain: its lines are dropped, since they
/// would never end.
class Log final : public ILog {
    Q_OBJECT

public:
    using ILog::ILog;

    void Write(eLogLevel level, const QString& strText) override;
    void AddWriter(ILogWriter* pWriter) override;
    void RemoveWriter(ILogWriter* pWriter) override;

private:
    QMutex m_mutex{QMutex::Recursive}; ///< A writer may take itself out.
    bool m_bWriting = false;
    std::vector<ILogWriter*> m_writers;
};

/// Appends the lines to a file, each with its time (UTC) and level:
/// "2025-01-31T12:00:00.000Z warning Texture 'x' is not there". A text of several
/// lines goes on indented. Each line is in the file when Write() returns.
class LogFile final : public ILogWriter {
    Q_OBJECT

public:
    /// \throws FileException it can't be written to
    explicit LogFile(const QString& strFileName, QObject* pParent = nullptr);

    void Write(eLogLevel level, const QString& strText) override;

private:
    QFile m_file;
};

/// "debug", "info", "warning", "error".
QString LevelName(eLogLevel level);

} // namespace Host
