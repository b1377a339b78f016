#pragma once

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QtTest>

#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

/// What makes life hard for the command, besides its arguments.
enum class Hardship {
    None,
    NoPrivilege, ///< Permissions of files bind it, even where the tests run as root.
    SmallFiles,  ///< No file may grow beyond 1000 bytes.
    LittleMemory ///< 700 MB of addresses.
};

struct Outcome {
    int exitCode;
    QString output;
    QString errors;
};

/// Runs the built command.
class CommandRunner : public QProcess {
public:
    explicit CommandRunner(const QString& folder)
    {
        setWorkingDirectory(folder);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
        setProcessEnvironment(environment);
    }

    void SetVariable(const QString& name, const QString& value)
    {
        QProcessEnvironment environment = processEnvironment();
        environment.insert(name, value);
        setProcessEnvironment(environment);
    }

    void SetHardship(Hardship hardship) { m_hardship = hardship; }

    /// Standard error goes to this terminal.
    void SetTerminal(int terminal) { m_terminal = terminal; }

    Outcome Run(const QStringList& words)
    {
        start(QStringLiteral(LUMENTA_COMMAND), words);
        // A crash is no exit code that any test expects.
        const bool ended = waitForFinished(120000) && exitStatus() == QProcess::NormalExit;
        return {ended ? exitCode() : -1, QString::fromUtf8(readAllStandardOutput()),
                QString::fromUtf8(readAllStandardError())};
    }

protected:
    void setupChildProcess() override
    {
        if (!Impose())
            _exit(99);
        if (m_terminal >= 0)
            dup2(m_terminal, STDERR_FILENO);
    }

private:
    bool Impose() const
    {
        const rlimit fewBytes{1000, 1000};
        const rlimit littleMemory{700u << 20, 700u << 20};
        switch (m_hardship) {
        case Hardship::NoPrivilege:
            // What is not in the bounding set is gone with the next exec.
            return geteuid() != 0
                   || (prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE, 0, 0, 0) == 0
                       && prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH, 0, 0, 0) == 0);
        case Hardship::SmallFiles:
            return setrlimit(RLIMIT_FSIZE, &fewBytes) == 0;
        case Hardship::LittleMemory:
            return setrlimit(RLIMIT_AS, &littleMemory) == 0;
        case Hardship::None:
            return true;
        }
        return false;
    }

    Hardship m_hardship = Hardship::None;
    int m_terminal = -1;
};

/// Everything in the folder, hidden files too, in order.
inline QStringList EntriesOf(const QString& folder)
{
    QStringList entries;
    const auto all = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    for (QDirIterator it(folder, all, QDirIterator::Subdirectories); it.hasNext();)
        entries += QDir(folder).relativeFilePath(it.next());
    entries.sort();
    return entries;
}

inline void WriteFile(const QString& fileName, const QByteArray& content)
{
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s cannot be written", qPrintable(fileName));
}
