#pragma once

#include "lumenta/interfaces/IModelLoader.h"
#include "reference/host/Model.h"
#include "reference/plugins/assimp-loader/AssimpLoader.h"

namespace Host {

/// Reads any model file that Assimp reads; what comes out is told at LoadModel().
/// A file's format is known by its content, too, if its name doesn't tell.
class AssimpModelLoader final : public IModelLoader {
    Q_OBJECT

public:
    using IModelLoader::IModelLoader;

    const std::vector<ModelFormatInfo>& GetFormats() const override;
    void SetDefaultTickRate(double ticksPerSecond) override;
    void Load(const QString& strFileName) override;
    void Cancel() override;
    SkinAnimation::Scene* TakeScene() override;
    TVec3<float> GetUpAxis() const override;
    float GetMillimetersPerUnit() const override;
    const std::vector<sModelMaterial>& GetMaterials() const override;
    QStringList GetImageNames() const override;
    QImage GetImage(const QString& strName) const override;
    QMap<QString, QVariant> GetMetadata() const override;
    QStringList GetWarnings() const override;

private:
    Model m_model;
    double m_ticksPerSecond = kUsualTicksPerSecond;
    bool m_isCancelled = false;
};

} // namespace Host
