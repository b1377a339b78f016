#include "reference/tools/MaterialFile.h"

#include "lumenta/files/WholeFile.h"
#include "lumenta/foundation/Exceptions.h"
#include "lumenta/materials/MaterialXml.h"
#include "reference/host/document/SceneMaterial.h"
#include "reference/tools/Failure.h"
#include "reference/tools/OutputFile.h"

#include <QFileInfo>

namespace Host {

namespace {

bool ReadsBack(const QByteArray& xml, const MaterialFile& material)
{
    MaterialFile read;
    try {
        ReadMaterial(xml, read.name, read.parameters);
    } catch (const InvalidParameterException&) {
        return false;
    }
    return read.name == material.name && read.parameters == material.parameters;
}

} // namespace

MaterialFile ReadMaterialFile(const QString& fileName)
{
    const QFileInfo file(fileName);
    if (file.exists() && !file.isFile()) throw Failure{fileName, QStringLiteral("is not a regular file")};
    MaterialFile material;
    try {
        ReadMaterial(ReadAllFile(fileName), material.name, material.parameters);
    } catch (const InvalidParameterException& exception) {
        // The first line tells of a method, which says nothing to a person.
        throw Failure{fileName, exception.GetErrorText().section(QLatin1Char('\n'), 1)};
    } catch (const FileException& exception) {
        throw FailureOf(exception, fileName);
    }
    return material;
}

void WriteMaterialFile(const QString& fileName, const MaterialFile& material)
{
    MaterialFile written = material;
    const QString filler = QStringLiteral("diffuse");
    if (written.parameters.isEmpty()) written.parameters[filler] = SceneMaterial(QString()).GetParameter(filler);
    const QByteArray xml = MaterialToXml(written.name, written.parameters);
    if (!ReadsBack(xml, written))
        throw Failure{fileName, QStringLiteral("a name or a value holds characters that no such file can keep")};
    WriteOutputFile(fileName, xml);
}

} // namespace Host
