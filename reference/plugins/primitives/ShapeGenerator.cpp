#include "reference/plugins/primitives/ShapeGenerator.h"

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/platform/IMeshNodeBuilder.h"

#include <algorithm>
#include <cmath>

namespace Host {

namespace {

[[noreturn]] void Refuse(const char* parameter, const QString& details)
{
    throw InvalidParameterException(QStringLiteral("IGenerator::SetValue"), QLatin1String(parameter), details);
}

bool IsNumber(const QVariant& value)
{
    switch (static_cast<QMetaType::Type>(value.userType())) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Float:
    case QMetaType::Double:
        return !std::isnan(value.toDouble());
    default:
        return false;
    }
}

double HeldNumber(const sGeneratorParameter& parameter, const QVariant& value)
{
    if (!IsNumber(value)) Refuse("value", QStringLiteral("'%1' takes a number").arg(parameter.strName));
    double number = value.toDouble();
    if (parameter.least.isValid()) number = std::max(number, parameter.least.toDouble());
    if (parameter.most.isValid()) number = std::min(number, parameter.most.toDouble());
    return number;
}

/// The value as the parameter takes it.
QVariant Held(const sGeneratorParameter& parameter, const QVariant& value)
{
    switch (static_cast<QMetaType::Type>(parameter.value.userType())) {
    case QMetaType::Bool:
        if (value.userType() != QMetaType::Bool)
            Refuse("value", QStringLiteral("'%1' takes true or false").arg(parameter.strName));
        return value;
    case QMetaType::Int: {
        const double number = HeldNumber(parameter, value);
        if (number != std::floor(number))
            Refuse("value", QStringLiteral("'%1' takes a whole number").arg(parameter.strName));
        return static_cast<int>(number);
    }
    default:
        return HeldNumber(parameter, value);
    }
}

} // namespace

ShapeGenerator::ShapeGenerator(const Shape& shape)
    : m_shape(shape)
{
    for (const sGeneratorParameter& parameter : m_shape.parameters)
        m_values[parameter.strName] = parameter.value;
}

void ShapeGenerator::Generate(IMeshNodeBuilder& builder)
{
    std::vector<ShapeMesh> meshes = m_shape.make(m_values);
    builder.BeginModel(m_shape.title, meshes.size());
    for (ShapeMesh& mesh : meshes)
        builder.AddMeshNode(mesh.name, mesh.vertices, mesh.indices, mesh.materialName, mesh.materialParameters);
    builder.EndModel();
}

void ShapeGenerator::SetValue(const QString& strName, const QVariant& value)
{
    const auto parameter = std::find_if(m_shape.parameters.begin(), m_shape.parameters.end(),
                                        [&](const sGeneratorParameter& known) { return known.strName == strName; });
    if (parameter == m_shape.parameters.end())
        Refuse("strName", QStringLiteral("A %1 has no '%2'").arg(m_shape.title.toLower(), strName));
    const QVariant held = Held(*parameter, value);
    if (held == m_values.value(strName)) return;
    m_values[strName] = held;
    Q_EMIT changed();
}

} // namespace Host
