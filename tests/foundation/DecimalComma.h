#pragma once

#include <QtTest>

#include <clocale>

/// Makes a locale with a decimal comma in the folder, which really exists then, and lets it reign.
inline bool LetDecimalCommaReign(const QTemporaryDir& folder)
{
    const QString german = folder.filePath("de_DE.UTF-8");
    QLocale::setDefault(QLocale(QLocale::German));
    return QProcess::execute("localedef", {"-c", "-i", "de_DE", "-f", "UTF-8", german}) == 0
           && qputenv("LOCPATH", QFile::encodeName(folder.path())) && std::setlocale(LC_ALL, "de_DE.UTF-8")
           && QByteArray(std::localeconv()->decimal_point) == ",";
}
