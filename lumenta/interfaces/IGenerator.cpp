#include "lumenta/interfaces/IGenerator.h"

IGenerator::~IGenerator() = default;

QObject* IGenerator::CreateEditor(QObject*)
{
    return nullptr;
}

QList<sGeneratorParameter> IGenerator::GetParameters() const
{
    return {};
}

QList<sGeneratorPreset> IGenerator::GetPresets() const
{
    return {};
}
