#include "reference/plugins/assimp-loader/AssimpModelLoader.h"

#include "reference/plugins/assimp-loader/AssimpFormats.h"
#include "reference/plugins/assimp-loader/Report.h"

#include <QPointer>

#include <cmath>

namespace Host {

const std::vector<ModelFormatInfo>& AssimpModelLoader::GetFormats() const
{
    return AssimpFormats();
}

void AssimpModelLoader::SetDefaultTickRate(double ticksPerSecond)
{
    if (std::isfinite(ticksPerSecond) && ticksPerSecond > 0.0)
        m_ticksPerSecond = ticksPerSecond;
}

void AssimpModelLoader::Load(const QString& strFileName)
{
    m_model = Model();
    m_isCancelled = false;
    const QPointer<AssimpModelLoader> self = this; // slots may delete it
    const auto tell = [&](int percent) {
        Q_EMIT loadingProgress(percent);
        if (!self || m_isCancelled)
            Report(strFileName).Refuse(QStringLiteral("loading was cancelled"));
    };
    m_model = LoadModel(strFileName, tell, m_ticksPerSecond);
}

void AssimpModelLoader::Cancel()
{
    m_isCancelled = true; // until the next Load()
}

SkinAnimation::Scene* AssimpModelLoader::TakeScene()
{
    return m_model.scene.release();
}

TVec3<float> AssimpModelLoader::GetUpAxis() const
{
    return m_model.up;
}

float AssimpModelLoader::GetMillimetersPerUnit() const
{
    return m_model.millimetersPerUnit;
}

const std::vector<sModelMaterial>& AssimpModelLoader::GetMaterials() const
{
    return m_model.materials;
}

QStringList AssimpModelLoader::GetImageNames() const
{
    return m_model.embeddedImages.keys();
}

QImage AssimpModelLoader::GetImage(const QString& strName) const
{
    return m_model.embeddedImages.value(strName);
}

QMap<QString, QVariant> AssimpModelLoader::GetMetadata() const
{
    return m_model.metadata;
}

QStringList AssimpModelLoader::GetWarnings() const
{
    return m_model.warnings;
}

} // namespace Host
