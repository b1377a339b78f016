#include "reference/plugins/folder-uploader/FolderUploader.h"

#include "lumenta/foundation/Conversions.h"
#include "lumenta/foundation/Exceptions.h"
#include "reference/plugins/folder-uploader/PartialFile.h"
#include "reference/plugins/folder-uploader/TargetName.h"

#include <QDir>
#include <QFileInfo>
#include <QTimer>
#include <QUrl>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace Host {

namespace {

/// Small enough that a slow disk leaves room for Cancel().
constexpr qint64 kPiece = 256 * 1024;

const QString kPin = QStringLiteral("pin");

QString TextIn(const QMap<QString, QVariant>& settings, const char* name)
{
    return settings.value(QLatin1String(name)).toString();
}

/// Whether new files can be made there by whoever this process acts as.
bool MayWriteTo(const QString& folder)
{
    return ::faccessat(AT_FDCWD, QFile::encodeName(folder).constData(), W_OK | X_OK, AT_EACCESS) == 0
           || errno != EACCES;
}

void RequireFolder(const QString& folder)
{
    if (!QFileInfo(folder).isDir()) throw Exception(QStringLiteral("There is no folder '%1'").arg(folder));
}

/// \throws Exception the note can't be read, or is empty: it would keep nobody out
QString PinOf(const QString& note)
{
    QFile file(note);
    if (!file.open(QIODevice::ReadOnly))
        throw Exception(QStringLiteral("'%1' can't be read: %2").arg(note, file.errorString()));
    const QString pin = QString::fromUtf8(file.read(kPiece)).trimmed();
    if (pin.isEmpty()) throw Exception(QStringLiteral("'%1' holds no pin").arg(note));
    return pin;
}

} // namespace

/// One upload. What is still to be done for it hangs on it, and ends with it.
struct FolderUploader::Job : QObject {
    QString folder;
    QString target;
    QMap<QString, QVariant> settings;
    QFile source;
    std::unique_ptr<PartialFile> copy;
    int percent = 0; ///< Told last.
    bool isWaitingForPin = false;

    QString Note() const { return QDir(folder).filePath(QStringLiteral(".upload-pin")); }
};

FolderUploader::FolderUploader(QObject* pParent)
    : IUploader(pParent)
{
}

FolderUploader::~FolderUploader() = default;

void FolderUploader::Upload(const QString& strFileName, const QMap<QString, QVariant>& settings)
{
    if (m_job) throw LogicException(QStringLiteral("An upload is under way: '%1'").arg(m_job->source.fileName()));
    m_job = std::make_unique<Job>();
    m_job->settings = settings;
    m_job->source.setFileName(strFileName);
    Later(&FolderUploader::Begin);
}

void FolderUploader::SetPin(const QString& strPin)
{
    if (!m_job || !m_job->isWaitingForPin) return;
    m_job->isWaitingForPin = false;
    m_job->settings[kPin] = strPin;
    Later(&FolderUploader::Begin);
}

void FolderUploader::Cancel()
{
    if (m_job) EndWith(QStringLiteral("The upload was cancelled"));
}

void FolderUploader::Later(Step step)
{
    QTimer::singleShot(0, m_job.get(), [this, step] {
        try {
            (this->*step)();
        } catch (const Exception& exception) {
            EndWith(exception.GetErrorText());
        } catch (...) {
            EndWith(QStringLiteral("It failed for an unknown reason"));
        }
    });
}

void FolderUploader::EndWith(const QString& strError)
{
    m_job.reset();
    Q_EMIT failed(strError);
}

void FolderUploader::Begin()
{
    m_job->folder = TextIn(m_job->settings, "folder");
    if (m_job->folder.isEmpty()) {
        m_job.reset();
        Q_EMIT requestSettings();
        return;
    }
    RequireFolder(m_job->folder);
    const QString name = TargetName(m_job->source.fileName(), TextIn(m_job->settings, "name"));
    m_job->target = QDir(m_job->folder).absoluteFilePath(name);
    const QString note = m_job->Note();
    const bool wantsPin = QFileInfo::exists(note);
    if (wantsPin && !m_job->settings.contains(kPin)) {
        m_job->isWaitingForPin = true;
        Q_EMIT urlForPin(QUrl::fromLocalFile(QFileInfo(note).absoluteFilePath()).toString(QUrl::FullyEncoded));
        return;
    }
    const bool isWelcome = !wantsPin || TextIn(m_job->settings, "pin").trimmed() == PinOf(note);
    if (!isWelcome || !MayWriteTo(m_job->folder)) {
        m_job.reset();
        Q_EMIT failedAuth();
        return;
    }
    Open();
}

void FolderUploader::Open()
{
    const QString name = m_job->source.fileName();
    // A pipe would be waited for without end.
    if (!QFileInfo(name).isFile()) throw Exception(QStringLiteral("There is no file '%1'").arg(name));
    if (!m_job->source.open(QIODevice::ReadOnly))
        throw Exception(QStringLiteral("'%1' can't be read: %2").arg(name, m_job->source.errorString()));
    m_job->copy = std::make_unique<PartialFile>(m_job->folder);
    Later(&FolderUploader::CopyPiece);
}

void FolderUploader::CopyPiece()
{
    QFile& source = m_job->source;
    const QByteArray piece = source.read(kPiece);
    if (source.error() != QFileDevice::NoError)
        throw Exception(QStringLiteral("'%1' can't be read: %2").arg(source.fileName(), source.errorString()));
    m_job->copy->Write(piece);
    Later(piece.isEmpty() ? &FolderUploader::Finish : &FolderUploader::CopyPiece);

    // A file that grows meanwhile is all there, too, when its end has come.
    const qint64 size = std::max(source.size(), source.pos());
    const int percent = size > 0 ? static_cast<int>(100 * source.pos() / size) : 100;
    if (percent <= m_job->percent) return;
    m_job->percent = percent;
    Q_EMIT progress(percent); // the last word: a slot may end all this
}

void FolderUploader::Finish()
{
    QString target = m_job->target;
    if (QVariantToBool(m_job->settings.value(QStringLiteral("overwrite"))))
        m_job->copy->Replace(target);
    else
        target = m_job->copy->Add(target);
    m_job.reset();
    Q_EMIT done(QUrl::fromLocalFile(target).toString(QUrl::FullyEncoded));
}

} // namespace Host
