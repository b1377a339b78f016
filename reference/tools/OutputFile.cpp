#include "reference/tools/OutputFile.h"

#include "reference/host/images/ReplaceFile.h"
#include "reference/tools/Failure.h"

#include <QFileInfo>
#include <QSet>

namespace Host {

void CheckOutputFile(const QString& fileName)
{
    const QString obstacle = ObstacleTo(fileName);
    if (!obstacle.isEmpty()) throw Failure{fileName, obstacle};
}

void KeepInputs(const QStringList& inputs, const QStringList& outputs, const QString& inputText)
{
    QSet<QString> kept;
    for (const QString& input : inputs)
        kept += QFileInfo(input).canonicalFilePath();
    kept.remove(QString());
    for (const QString& output : outputs)
        if (kept.contains(TargetPath(output))) throw Failure{output, QStringLiteral("would overwrite ") + inputText};
}

void WriteOutputFile(const QString& fileName, const QByteArray& bytes)
{
    const QString problem = ReplaceFile(fileName, bytes);
    if (!problem.isEmpty()) throw Failure{fileName, QStringLiteral("could not be written: ") + problem};
}

} // namespace Host
