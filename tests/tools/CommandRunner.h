#pragma once

#include <QDir>
#include <QProcess>
#include <QtTest>

#include <functional>

#include <fcntl.h>
#include <grp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <linux/capability.h>

/// What makes life hard for the command, besides its arguments. Done in its own
/// process before it starts; false if it cannot be done.
using Hardship = std::function<bool()>;

/// Permissions of files bind the command, even where the tests run as root:
/// what is not in the bounding set is gone with the next exec.
inline bool WithoutPrivilege()
{
    return geteuid() != 0
           || (prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE, 0, 0, 0) == 0
               && prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH, 0, 0, 0) == 0);
}

/// As a user to whom nothing here belongs.
inline bool AsNobody()
{
    constexpr unsigned int kNobody = 65534;
    return setgroups(0, nullptr) == 0 && setresgid(kNobody, kNobody, kNobody) == 0
           && setresuid(kNobody, kNobody, kNobody) == 0 && access(LUMENTA_COMMAND, X_OK) == 0;
}

/// What setrlimit() limits.
inline Hardship Limited(decltype(RLIMIT_AS) resource, rlim_t most)
{
    return [resource, most] {
        const rlimit limit{most, most};
        return setrlimit(resource, &limit) == 0;
    };
}

/// Standard output takes nothing.
inline bool IntoFullDevice()
{
    return dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO) >= 0;
}

/// Standard input is none.
inline bool FromFolder()
{
    return dup2(open("/", O_RDONLY), STDIN_FILENO) >= 0;
}

/// The exit code where a hardship can't be done here.
constexpr int kImpossible = 99;

struct Outcome {
    int exitCode;
    QString output;
    QString errors;
};

/// Runs the built command.
class CommandRunner : public QProcess {
public:
    CommandRunner(const QString& folder, const Hardship& hardship)
        : m_hardship(hardship)
    {
        setWorkingDirectory(folder);
    }

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
        if (m_hardship && !m_hardship())
            _exit(kImpossible);
    }

private:
    Hardship m_hardship;
};

/// Everything in the folder, hidden files too, in order.
inline QStringList EntriesOf(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

inline void WriteFile(const QString& fileName, const QByteArray& content)
{
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s cannot be written", qPrintable(fileName));
}
