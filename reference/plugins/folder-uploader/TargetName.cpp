#include "reference/plugins/folder-uploader/TargetName.h"

#include "lumenta/foundation/Exceptions.h"

#include <QDate>
#include <QFileInfo>

namespace Host {

namespace {

QString Filled(const QString& pattern, const QFileInfo& source)
{
    const QString date = QDate::currentDate().toString(Qt::ISODate);
    // The date first: a file's name may hold braces of its own.
    QString name = QString(pattern).replace(QLatin1String("{date}"), date);
    name.replace(QLatin1String("{name}"), source.completeBaseName());
    const QString ending = QLatin1Char('.') + source.suffix();
    const bool isComplete = source.suffix().isEmpty() || name.endsWith(ending, Qt::CaseInsensitive);
    return isComplete ? name : name + ending;
}

} // namespace

QString TargetName(const QString& strFileName, const QString& strPattern)
{
    const QFileInfo source(strFileName);
    const QString name = strPattern.isEmpty() ? source.fileName() : Filled(strPattern, source);
    const bool isName = !name.isEmpty() && !name.startsWith(QLatin1Char('.')) && !name.contains(QLatin1Char('/'))
                        && !name.contains(QChar(QChar::Null));
    if (!isName) throw Exception(QStringLiteral("'%1' can't be the name of an uploaded file").arg(name));
    return name;
}

} // namespace Host
