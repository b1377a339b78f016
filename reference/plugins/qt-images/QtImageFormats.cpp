#include "reference/plugins/qt-images/QtImageFormats.h"

#include <QImageReader>
#include <QImageWriter>

namespace Host {

namespace {

struct Family {
    QString title;
    QStringList extensions; ///< The first is Qt's name of the format.
};

/// Further extensions of a family are known by their content where Qt doesn't
/// know them by name.
std::vector<Family> Families()
{
    return {{QStringLiteral("PNG images"), {"png"}},
            {QStringLiteral("JPEG images"), {"jpg", "jpeg", "jpe", "jfif"}},
            {QStringLiteral("TIFF images"), {"tif", "tiff"}},
            {QStringLiteral("Targa images"), {"tga"}},
            {QStringLiteral("WebP images"), {"webp"}},
            {QStringLiteral("BMP images"), {"bmp", "dib"}},
            {QStringLiteral("GIF images"), {"gif"}},
            {QStringLiteral("SVG drawings"), {"svg", "svgz"}},
            {QStringLiteral("Portable pixmaps"), {"ppm", "pgm", "pbm", "pnm"}},
            {QStringLiteral("Windows icons"), {"ico", "cur"}},
            {QStringLiteral("Macintosh icons"), {"icns"}},
            {QStringLiteral("MNG images"), {"mng"}},
            {QStringLiteral("Wireless bitmaps"), {"wbmp"}},
            {QStringLiteral("X bitmaps"), {"xbm"}},
            {QStringLiteral("X pixmaps"), {"xpm"}}};
}

/// Those of the table, then one for each format that is not in it.
std::vector<Family> FamiliesWith(const QList<QByteArray>& formats)
{
    std::vector<Family> families = Families();
    QStringList known;
    for (const Family& family : families)
        known += family.extensions;
    for (const QByteArray& format : formats) {
        const QString extension = QString::fromLatin1(format).toLower();
        if (known.contains(extension)) continue;
        known += extension;
        families.push_back({QStringLiteral("%1 images").arg(extension.toUpper()), {extension}});
    }
    return families;
}

} // namespace

std::vector<ImageLoaderInfo> QtLoaderFormats()
{
    const QList<QByteArray> formats = QImageReader::supportedImageFormats();
    std::vector<ImageLoaderInfo> infos;
    for (const Family& family : FamiliesWith(formats)) {
        if (!formats.contains(family.extensions.front().toLatin1())) continue;
        const QString patterns = family.extensions.join(QStringLiteral(" *."));
        infos.push_back({family.title, QStringLiteral("%1 (*.%2)").arg(family.title, patterns), family.extensions});
    }
    return infos;
}

std::vector<ImageSaverInfo> QtSaverFormats()
{
    const QList<QByteArray> formats = QImageWriter::supportedImageFormats();
    std::vector<ImageSaverInfo> infos;
    for (const Family& family : FamiliesWith(formats))
        for (const QString& extension : family.extensions)
            if (formats.contains(extension.toLatin1())) infos.push_back({family.title, extension, extension});
    return infos;
}

} // namespace Host
