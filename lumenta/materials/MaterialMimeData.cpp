#include "lumenta/materials/MaterialMimeData.h"

#include "lumenta/files/WholeFile.h"
#include "lumenta/materials/MaterialXml.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUrl>

namespace {

const QLatin1String kUriList("text/uri-list");
const QLatin1String kPlainText("text/plain");

/// Where a material of that name is written. Makes the folder; whether it is
/// there shows when the file is written.
QString MakeFilePath(const QString& name)
{
    const QDir folder(QDir::toNativeSeparators(QDir::tempPath() + QStringLiteral("/lumenta")));
    if (!folder.exists())
        folder.mkpath(QStringLiteral("."));
    return QDir::toNativeSeparators(folder.absolutePath() + QLatin1Char('/') + name + QStringLiteral(".mtl"));
}

} // namespace

MaterialMimeData::MaterialMimeData(const QMap<QString, QVariant>& givenParameters, const QString& givenName)
    : parameters(givenParameters), name(givenName)
{
    parameters.detach(); // a reference into the caller's map writes to what is shared
    const auto texture = parameters.constFind(QStringLiteral("texture"));
    if (texture == parameters.constEnd())
        return;
    filePath = texture->toString();
    isMaterial = false;
}

MaterialMimeData::~MaterialMimeData()
{
    if (removeFileOnDestroy && !filePath.isEmpty())
        QFile::remove(filePath);
}

bool MaterialMimeData::hasFormat(const QString& mimeType) const
{
    return mimeType == kUriList || mimeType == kPlainText;
}

QStringList MaterialMimeData::formats() const
{
    return {kUriList, kPlainText};
}

QVariant MaterialMimeData::retrieveData(const QString& mimeType, QVariant::Type type) const
{
    if (mimeType == kPlainText)
        return name;
    if (mimeType != kUriList)
        return QMimeData::retrieveData(mimeType, type);
    if (filePath.isEmpty()) {
        filePath = MakeFilePath(name);
        SaveDataToFile(filePath, MaterialToXml(name, parameters));
    }
    return QVariantList{QUrl::fromLocalFile(filePath)};
}

const QMap<QString, QVariant>& MaterialMimeData::GetParameters() const
{
    return parameters;
}

const QString& MaterialMimeData::GetName() const
{
    return name;
}

bool MaterialMimeData::IsMaterial() const
{
    return isMaterial;
}

QString MaterialMimeData::GetBaseFolder() const
{
    return QFileInfo(filePath).absolutePath();
}

void MaterialMimeData::Cleanup()
{
    removeFileOnDestroy = true;
}
