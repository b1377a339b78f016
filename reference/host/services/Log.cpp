#include "reference/host/services/Log.h"

#include "lumenta/foundation/Exceptions.h"
#include "reference/host/Caught.h"

#include <QDateTime>
#include <QMutexLocker>
#include <QScopedValueRollback>

#include <algorithm>

namespace Host {

QString LevelName(eLogLevel level)
{
    switch (level) {
    case eLogDebug:
        return QStringLiteral("debug");
    case eLogInfo:
        return QStringLiteral("info");
    case eLogWarning:
        return QStringLiteral("warning");
    case eLogError:
        return QStringLiteral("error");
    }
    return QString::number(level);
}

void Log::Write(eLogLevel level, const QString& strText)
{
    const QMutexLocker lock(&m_mutex);
    if (m_bWriting) return;
    const std::vector<ILogWriter*> writers = m_writers;
    const QScopedValueRollback<bool> writing(m_bWriting, true);
    for (ILogWriter* const pWriter : writers)
        if (std::find(m_writers.begin(), m_writers.end(), pWriter) != m_writers.end())
            Tell("ILog::Write", [&] { pWriter->Write(level, strText); });
}

void Log::AddWriter(ILogWriter* pWriter)
{
    const QMutexLocker lock(&m_mutex);
    if (pWriter && std::find(m_writers.begin(), m_writers.end(), pWriter) == m_writers.end())
        m_writers.push_back(pWriter);
}

void Log::RemoveWriter(ILogWriter* pWriter)
{
    const QMutexLocker lock(&m_mutex);
    m_writers.erase(std::remove(m_writers.begin(), m_writers.end(), pWriter), m_writers.end());
}

LogFile::LogFile(const QString& strFileName, QObject* pParent)
    : ILogWriter(pParent)
    , m_file(strFileName)
{
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered))
        throw FileException(strFileName, QStringLiteral("The log can't be written: ") + m_file.errorString());
}

void LogFile::Write(eLogLevel level, const QString& strText)
{
    const QString time = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs);
    const QString text = QString(strText).replace(QLatin1Char('\n'), QLatin1String("\n    "));
    // In one piece, as several processes may append to one file.
    m_file.write(QStringLiteral("%1 %2 %3\n").arg(time, LevelName(level), text).toUtf8());
}

} // namespace Host
