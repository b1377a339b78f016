#include "lumenta/materials/MaterialXml.h"
#include "fuzz/Input.h"
#include "lumenta/foundation/Exceptions.h"

#include <algorithm>

// A material of a stranger is refused or read; what was read comes back from
// its own document.

namespace {

/// Whether XML can hold it.
bool CanBeWritten(const QString& text)
{
    const QVector<uint> points = text.toUcs4();
    return std::none_of(points.begin(), points.end(), [](uint point) { return point == 0xfffe || point == 0xffff; })
           && QString::fromUtf8(text.toUtf8()) == text;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    QString name;
    QMap<QString, QVariant> parameters;
    try {
        ReadMaterial(Fuzz::Input(data, size).Rest(), name, parameters);
    } catch (const InvalidParameterException&) {
        return 0;
    }
    Fuzz::Require(!parameters.isEmpty(), "a material that is read has parameters");
    for (auto entry = parameters.cbegin(); entry != parameters.cend(); ++entry)
        if (!CanBeWritten(entry.key()) || !CanBeWritten(entry.value().toString())) return 0;
    if (!CanBeWritten(name)) return 0;

    QString nameAgain;
    QMap<QString, QVariant> again;
    try {
        ReadMaterial(MaterialToXml(name, parameters), nameAgain, again);
    } catch (const InvalidParameterException& refusal) {
        Fuzz::Require(false, qPrintable(refusal.GetErrorText()));
    }
    Fuzz::Require(nameAgain == name && again == parameters, "a material that was read comes back");
    return 0;
}
