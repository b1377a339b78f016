#pragma once

#include "lumenta/interfaces/IModelLoader.h"
#include "lumenta/skin/Scene.h"

#include <memory>

/// Reads *.tri: nine numbers a line, the corners of a triangle, counter-clockwise
/// as seen from outside. Lines that begin with # are remarks.
class TriangleLoader final : public IModelLoader {
    Q_OBJECT

public:
    const std::vector<ModelFormatInfo>& GetFormats() const override;
    void SetDefaultTickRate(double) override {} // nothing moves
    void Load(const QString& strFileName) override;
    void Cancel() override { m_isCancelled = true; }
    SkinAnimation::Scene* TakeScene() override { return m_scene.release(); }
    TVec3<float> GetUpAxis() const override { return {0.0f, 1.0f, 0.0f}; }
    float GetMillimetersPerUnit() const override { return 0.0f; } // the file doesn't say
    const std::vector<sModelMaterial>& GetMaterials() const override { return m_materials; }
    QStringList GetImageNames() const override { return {}; }
    QImage GetImage(const QString&) const override { return {}; }
    QMap<QString, QVariant> GetMetadata() const override { return {}; }
    QStringList GetWarnings() const override { return {}; }

private:
    std::unique_ptr<SkinAnimation::Scene> m_scene;
    std::vector<sModelMaterial> m_materials;
    bool m_isCancelled = false;
};
