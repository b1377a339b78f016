#include "reference/plugins/qt-images/QtImageManager.h"

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/ISettings.h"
#include "lumenta/platform/IApplicationContext.h"
#include "reference/host/images/ImageReading.h"
#include "reference/plugins/qt-images/QtImageFormats.h"
#include "reference/plugins/qt-images/QtImageSaver.h"

#include <QBuffer>
#include <QFileInfo>

#include <algorithm>

namespace Host {

namespace {

constexpr int kMostRecentFiles = 20;

const QString kRecentFiles = QStringLiteral("images/recent");

/// What a file is known by, whatever path leads to it.
QString NameOf(const QString& fileName)
{
    // Not SimplifyFilename(): it takes a backslash within a name for a separator.
    const QString canonical = QFileInfo(fileName).canonicalFilePath();
    return canonical.isEmpty() ? fileName : canonical;
}

bool IsFile(const QString& fileName)
{
    return QFileInfo(fileName).isFile();
}

QString Refusal(const QString& fileName, const QString& problem)
{
    return QStringLiteral("The image '%1' can't be read: %2").arg(fileName, problem);
}

} // namespace

QtImageManager::QtImageManager(const IApplicationContext& context)
    : m_context(context)
    , m_loaderFormats(QtLoaderFormats())
    , m_saverFormats(QtSaverFormats())
{
}

QtImageManager::~QtImageManager()
{
    while (!m_entries.empty()) {
        const QPointer<Image> image = m_entries.back().image;
        m_entries.pop_back(); // slots may ask for it
        delete image;
    }
}

IImage* QtImageManager::CreateImage(const QSize& size)
{
    if (size.isEmpty())
        throw InvalidParameterException(
            QStringLiteral("IImageManager::CreateImage"), QStringLiteral("size"),
            QStringLiteral("%1 by %2 pixels are no image").arg(size.width()).arg(size.height()));
    QImage image(size, QImage::Format_ARGB32);
    if (image.isNull())
        throw OutOfMemoryException(
            QStringLiteral("There is no memory for an image of %1 by %2 pixels").arg(size.width()).arg(size.height()));
    image.fill(Qt::transparent);
    return Add(image, QString());
}

IImage* QtImageManager::FindImage(const QString& fileName) const
{
    const Entry* const pEntry = Find(fileName);
    return pEntry ? pEntry->image.data() : nullptr;
}

IImage* QtImageManager::DecodeImage(const QByteArray& data, const QString& strName)
{
    if (Entry* const pEntry = Find(strName)) {
        ++pEntry->nAskers;
        return pEntry->image;
    }
    QBuffer buffer;
    buffer.setData(data);
    buffer.open(QIODevice::ReadOnly);
    QString problem;
    const QImage image = ReadImage(buffer, QFileInfo(strName).suffix(), problem);
    if (image.isNull()) throw ImageFormatException(Refusal(strName, problem));
    return Add(image, NameOf(strName));
}

IImageSaver* QtImageManager::CreateSaver(const ImageSaverInfo& info) const
{
    const bool isOurs = std::any_of(m_saverFormats.begin(), m_saverFormats.end(),
                                    [&](const ImageSaverInfo& format) { return format.id == info.id; });
    return isOurs ? new QtImageSaver(info.id.toLatin1()) : nullptr;
}

void QtImageManager::ReleaseImage(IImage* pImage)
{
    const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                    [&](const Entry& entry) { return pImage && entry.image == pImage; });
    if (found == m_entries.end() || --found->nAskers > 0) return;
    m_entries.erase(found); // slots may ask for it
    delete pImage;
}

IImage* QtImageManager::LoadImageFile(const QString& fileName)
{
    const QString name = NameOf(fileName);
    const bool isFile = IsFile(name);
    Entry* const pEntry = Find(fileName);
    IImage* pImage = nullptr;
    if (pEntry) {
        ++pEntry->nAskers;
        pImage = pEntry->image;
    } else if (isFile) {
        QString problem;
        const QImage image = ReadImage(name, problem);
        if (image.isNull()) throw ImageFormatException(Refusal(fileName, problem));
        pImage = Add(image, name);
    }
    if (isFile) NoteRecentFile(name);
    return pImage;
}

bool QtImageManager::ReloadImage(IImage* pImage)
{
    if (!pImage || !IsFile(pImage->GetFileName())) return false;
    QString problem;
    const QImage image = ReadImage(pImage->GetFileName(), problem);
    if (image.isNull()) return false;
    pImage->SetQImage(image);
    return true;
}

QStringList QtImageManager::GetRecentFiles() const
{
    QStringList files = RecentFiles();
    files.erase(std::remove_if(files.begin(), files.end(), [](const QString& file) { return !IsFile(file); }),
                files.end());
    return files;
}

/// Null where there is none. Good until the next one comes or goes.
QtImageManager::Entry* QtImageManager::Find(const QString& fileName) const
{
    if (fileName.isEmpty()) return nullptr;
    const QString name = NameOf(fileName);
    const auto found = std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry& entry) {
        const QString held = entry.image ? entry.image->GetFileName() : QString();
        return held == name || held == fileName;
    });
    return found == m_entries.end() ? nullptr : &*found;
}

IImage* QtImageManager::Add(const QImage& image, const QString& strName)
{
    m_entries.erase(std::remove_if(m_entries.begin(), m_entries.end(), [](const Entry& entry) { return !entry.image; }),
                    m_entries.end());
    auto added = std::make_unique<Image>(image, strName);
    m_entries.push_back({added.get(), 1});
    return added.release();
}

QStringList QtImageManager::RecentFiles() const
{
    const ISettings* const pSettings = m_context.GetSettings();
    return pSettings ? pSettings->GetValue(kRecentFiles, QVariant()).toStringList() : m_recentFiles;
}

void QtImageManager::NoteRecentFile(const QString& fileName)
{
    QStringList files = RecentFiles();
    if (!files.isEmpty() && files.front() == fileName) return;
    files.removeAll(fileName);
    files.prepend(fileName);
    files = files.mid(0, kMostRecentFiles);
    if (ISettings* const pSettings = m_context.GetSettings())
        pSettings->SetValue(kRecentFiles, files);
    else
        m_recentFiles = files;
}

} // namespace Host
