#pragma once

#include "reference/plugins/primitives/Shapes.h"

namespace Host {

/// A shape with its present values.
///
/// A value of a number's parameter is any number, where the parameter counts a
/// whole one; of a switch, a bool. Texts are neither.
///
/// Has no meta-object of its own: it is an IGenerator, in whichever module.
class ShapeGenerator final : public IGenerator {
public:
    explicit ShapeGenerator(const Shape& shape);

    void Generate(IMeshNodeBuilder& builder) override;
    QList<sGeneratorParameter> GetParameters() const override { return m_shape.parameters; }
    QList<sGeneratorPreset> GetPresets() const override { return m_shape.presets; }
    QVariant GetValue(const QString& strName) const override { return m_values.value(strName); }
    void SetValue(const QString& strName, const QVariant& value) override;

private:
    const Shape m_shape;
    ShapeValues m_values;
};

} // namespace Host
