#include "lumenta/files/Paths.h"
#include "lumenta/files/WholeFile.h"
#include "lumenta/foundation/Exceptions.h"
#include "tests/foundation/Exact.h"

#include <csignal>
#include <functional>

#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <linux/capability.h>

namespace {

const QString kNotOpened = QStringLiteral("Can't open the file\nFile: %1 [%1]");
const QString kNotWritten = QStringLiteral("Can't write the data\nFile: %1 [%1]");

using Deed = std::function<QString()>;

/// What the deed answers, or the error it ends with.
QString Outcome(const Deed& deed)
{
    try {
        return deed();
    } catch (const FileException& e) {
        return e.GetErrorText() + " [" + e.GetFileName() + "]";
    }
}

/// The same in a process of its own that has it hard.
QString Hard(bool (*hardship)(), const Deed& deed)
{
    int ends[2];
    if (pipe(ends) != 0) qFatal("no pipe");
    const pid_t child = fork();
    if (child == 0) {
        const QByteArray text = (hardship() ? Outcome(deed) : QString("not possible here")).toUtf8();
        _exit(write(ends[1], text.constData(), size_t(text.size())) == text.size() ? 0 : 1);
    }
    close(ends[1]);
    QFile answer;
    answer.open(ends[0], QIODevice::ReadOnly, QFileDevice::AutoCloseHandle);
    const QString text = QString::fromUtf8(answer.readAll());
    int status = -1;
    return waitpid(child, &status, 0) == child && status == 0 ? text : "a crash";
}

/// Permissions bind root, too.
bool WithoutPrivilege()
{
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    const __user_cap_data_struct none[2] = {};
    return syscall(SYS_capset, &header, none) == 0;
}

bool WithShortFiles()
{
    const rlimit limit{4000, 4000};
    return std::signal(SIGXFSZ, SIG_IGN) != SIG_ERR && setrlimit(RLIMIT_FSIZE, &limit) == 0;
}

/// In the folder "tiny", as this process sees it.
bool WithTinyDisk()
{
    return (unshare(CLONE_NEWNS) == 0 || unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0)
           && mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0
           && mount("tmpfs", "tiny", "tmpfs", 0, "size=4k") == 0;
}

Deed Saving(const QString& name, void (*save)(const QString&, const QByteArray&) = &SaveDataToFile)
{
    return [=] { return save(name, QByteArray(10000, 'x')), QString("saved"); };
}

Deed Reading(const QString& name)
{
    return [=] { return QString::fromUtf8(ReadAllFile(name)); };
}

Deed Finding(const QString& path, const QString& base)
{
    return [=] { return TryToFindFilePessimistic(path, base) + " | " + TryToFindFileOptimistic(path, base); };
}

} // namespace

class FilesTest : public QObject {
    Q_OBJECT

    QTemporaryDir m_folder; // the current one, "~" in the tables
    QString m_path;

    void PathRow(const char* name, QString found, const QString& expected)
    {
        found.replace(m_path, "~").replace(QString(m_path).replace('/', '\\'), "~");
        Row(name, found, expected);
    }

private Q_SLOTS:
    void initTestCase()
    {
        m_path = QFileInfo(m_folder.path()).canonicalFilePath();
        QVERIFY(!m_path.isEmpty() && QDir::setCurrent(m_path));
        for (const char* name : {"doc/tex/wood.png", "doc/wood.png", "doc/beside.png", "doc/locked/wood.png",
                                 "doc/locked/alone.png", "other/away.png", "closed", "tiny/x"})
            TrySaveDataToFile(name, name);
        QVERIFY(QFile::link("tex/../tex/wood.png", "doc/link.png") && QFile::link("nowhere", "doc/broken.png"));
        QVERIFY(chmod("doc/locked", 0) == 0 && chmod("closed", 0) == 0);
    }

    void cleanupTestCase() { QVERIFY(chmod("doc/locked", 0700) == 0); }

    void Paths_data()
    {
        AnswerColumns();
        for (const char* path : {"C:\\x", "C:/x", "a/b", "a", "abcd", "a\\b/c", "\\\\server/x", "/:\\x"})
            Row(qPrintable(QString("Windows: ") + path), GetRelativePath(path, "x/y"), "x\\y");
        for (const char* path : {"/", "/a/b", "a/b/c", "a/bc", "/a\\b", "/:/x", "/C:\\x"})
            Row(qPrintable(QString("Unix: ") + path), GetRelativePath(path, "x/y"), "x/y");

        Row("inside", GetRelativePath("/a/doc", "/a/doc/tex/../b.png"), "b.png");
        Row("outside, as it was", GetRelativePath("/a/doc", "/a/./other.png"), "/a/./other.png");
        Row("outside, as it was, not absolute either", GetRelativePath("/a/doc", "../b.png"), "../b.png");
        Row("inside, with dots before its name", GetRelativePath("/a/doc", "/a/doc/..b.png"), "..b.png");
        Row("the base itself", GetRelativePath("/a/doc", "/a/doc/"), ".");
        Row("inside, Windows", GetRelativePath("doc", m_path + "/doc/tex/wood.png"), "tex\\wood.png");
        PathRow("outside, Windows", GetRelativePath("doc", m_path + "/doc/../a/b.png"), "~\\a\\b.png");
        Row("a drive is no root here", GetRelativePath("C:\\Docs", "C:/Docs/a/b.png"), "C:\\Docs\\a\\b.png");
        Row("a resource", GetRelativePath("C:\\Docs", ":/icons/a.png"), ":/icons/a.png");
        Row("a colon alone makes no resource", GetRelativePath("C:\\Docs", ":icons/a.png"), ":icons\\a.png");
        Row("without a base", GetRelativePath("", "a/../b\\c.png"), "a/../b\\c.png");
        Row("of nothing", GetRelativePath("C:\\Docs", ""), "");

        Row("full: dots stay", BuildFullPath("/doc", "../tex\\a.png"), "/doc/../tex/a.png");
        PathRow("full: from a relative base", BuildFullPath("sub\\doc", "tex/a.png"), "~/sub/doc/tex/a.png");
        PathRow("full: a share is no root here", BuildFullPath("C:\\doc", "\\\\server\\a"), "~/C:/doc///server/a");
        Row("full: absolute", BuildFullPath("C:\\doc", "/a\\../b.png"), "/a/../b.png");
        Row("full: any colon in front", BuildFullPath("/doc", ":icons\\a.png"), ":icons/a.png");
        Row("full: without a base", BuildFullPath("", "a\\b.png"), "a/b.png");
        Row("full: of nothing", BuildFullPath("/doc", ""), "");

        Row("name: every sign", SanitizeFilename("a/\\\"'`~|,?<>:;*^$#@ b", "_"), "a___________________b");
        Row("name: innocent signs", SanitizeFilename("A.b-c_d(e)[f]{g}=%&!+", ""), "A.b-c_d(e)[f]{g}=%&!+");
        Row("name: three dots are two and one", SanitizeFilename("a...b....c", "_"), "a_.b__c");
        const QString signs = "/\\\"'`~|,?<>:;*^$#@ ";
        QString turned = SanitizeFilename("..", "/_"), twice = "/__";
        for (int i = 1; i < signs.size(); ++i) {
            turned += SanitizeFilename(signs.mid(i - 1, 1), signs.mid(i, 1) + "_");
            twice += signs.mid(i, 1) + "__";
        }
        Row("name: the next sign's turn comes later", turned, twice);
        Row("name: the replacement's dots stay, its signs do not", SanitizeFilename("a/b", "..?@"), "a....?..?@..?@b");
    }
    void Paths() { CompareAnswer(); }

    void MovedFiles_data()
    {
        AnswerColumns();
        const QString wood = "~/doc/tex/wood.png | ~/doc/tex/wood.png";
        const QString beside = "~/doc/beside.png | ~/doc/beside.png";
        PathRow("where it was, though there is one beside", Finding("tex\\wood.png", "doc")(), wood);
        PathRow("moved with its document, from a drive", Finding("C:\\old\\beside.png", "doc")(), beside);
        PathRow("moved with its document, once absolute", Finding("/old/tex/beside.png", "doc")(), beside);
        PathRow("nowhere", Finding("tex\\none.png", "doc")(), " | ~/doc/tex/none.png");
        PathRow("nowhere, absolute", Finding("/old\\none.png", "doc")(), " | /old/none.png");
        PathRow("through a link", Finding("link.png", "doc")(), wood);
        PathRow("a link that leads nowhere", Finding("broken.png", "doc")(), " | ~/doc/broken.png");
        PathRow("a folder is one, too", Finding("old/tex", "doc")(), "~/doc/tex | ~/doc/tex");
        PathRow("no name", Finding("none/", "doc")(), " | ~/doc/none/");
        PathRow("without a base, from here", Finding("doc/tex/wood.png", "")(), wood);
        PathRow("nothing", Finding("", "doc")(), " | ");
        PathRow("beside, since nobody may look where it was",
                Hard(&WithoutPrivilege, Finding("locked/wood.png", "doc")), "~/doc/wood.png | ~/doc/wood.png");
        PathRow("only where nobody may look", Hard(&WithoutPrivilege, Finding("locked/alone.png", "doc")),
                " | ~/doc/locked/alone.png");
        PathRow("simple", SimplifyFilename("doc/../doc/link.png"), "~/doc/tex/wood.png");
        PathRow("simple: what is not there stays", SimplifyFilename("doc/../none\\a"), "doc/../none\\a");
    }
    void MovedFiles() { CompareAnswer(); }

    void Errors_data()
    {
        AnswerColumns();
        Row("saved in no folder", Outcome(Saving("none/../%2.txt")), kNotOpened.arg("none/../%2.txt"));
        Row("saved as a folder", Outcome(Saving("doc")), kNotOpened.arg("doc"));
        const QString ended = QString("other/away.png") + QChar(0) + ".txt"; // no other name, up to there
        Row("saved under a name with a zero", Outcome(Saving(ended)), kNotOpened.arg(ended));
        Row("read from a name with a zero", Outcome(Reading(ended)), kNotOpened.arg(ended));
        Row("no folder is made up to a zero", Outcome(Saving("new" + ended, &TrySaveDataToFile)), kNotOpened.arg("new" + ended));
        Row("there is none", QFileInfo::exists("newother") ? "there" : "none", "none");
        Row("saved without permission", Hard(&WithoutPrivilege, Saving("closed")), kNotOpened.arg("closed"));
        Row("no folder can be made", Outcome(Saving("other/away.png/a/b", &TrySaveDataToFile)),
            kNotOpened.arg("other/away.png/a/b"));
        Row("so that file is as it was", Outcome(Reading("other/away.png")), "other/away.png");
        Row("read from nowhere", Outcome(Reading("none.txt")), kNotOpened.arg("none.txt"));
        Row("read from a folder", Outcome(Reading("doc")), kNotOpened.arg("doc"));
        Row("read without permission", Hard(&WithoutPrivilege, Reading("closed")), kNotOpened.arg("closed"));
        Row("on a device that takes nothing", Outcome(Saving("/dev/full")), kNotWritten.arg("/dev/full"));
        Row("longer than files may be", Hard(&WithShortFiles, Saving("long")), kNotWritten.arg("long"));
        Row("so what fits is kept", QString::number(QFileInfo("long").size()), "4000");
        const QString onTinyDisk = Hard(&WithTinyDisk, Saving("tiny/a"));
        if (onTinyDisk == "not possible here")
            qWarning("no file system may be mounted here: a full disk is not tried");
        else
            Row("on a disk that is too small", onTinyDisk, kNotWritten.arg("tiny/a"));
    }
    void Errors() { CompareAnswer(); }

    void BytesComeBack()
    {
        QByteArray bytes("\r\n\n\r\x1a\xef\xbb\xbf");
        for (int i = 0; i < 256; ++i)
            bytes += char(i);
        TrySaveDataToFile("new/\u00e4/c.bin", QByteArray(1000, 'x'));
        for (const QByteArray& data : {bytes, QByteArray()}) {
            SaveDataToFile("new/\u00e4/c.bin", data);
            QCOMPARE(ReadAllFile("new/\u00e4/c.bin"), data);
        }
        QVERIFY2(ReadAllFile("/proc/self/cmdline").contains("files_test"), "a file that does not tell its size");
    }
};

QTEST_APPLESS_MAIN(FilesTest)
#include "files_test.moc"
