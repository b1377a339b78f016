#include "reference/plugins/assimp-loader/MetadataReader.h"

#include "reference/plugins/assimp-loader/AssimpValues.h"

#include <QVariantList>

#include <assimp/commonMetaData.h>
#include <assimp/metadata.h>
#include <assimp/scene.h>

#include <cstdint>
#include <vector>

namespace Host {

namespace {

constexpr float kMillimetersPerCentimeter = 10.0f;
constexpr float kMillimetersPerMeter = 1000.0f;

template <typename Value>
const Value& As(const aiMetadataEntry& entry)
{
    return *static_cast<const Value*>(entry.mData);
}

/// Invalid for what is no single value.
QVariant ValueOf(const aiMetadataEntry& entry)
{
    switch (entry.mType) {
    case AI_BOOL:
        return As<bool>(entry);
    case AI_INT32:
        return As<std::int32_t>(entry);
    case AI_UINT64:
        return static_cast<qulonglong>(As<std::uint64_t>(entry));
    case AI_FLOAT:
        return static_cast<double>(As<float>(entry));
    case AI_DOUBLE:
        return As<double>(entry);
    case AI_AISTRING:
        return ToText(As<aiString>(entry));
    case AI_AIVECTOR3D: {
        const aiVector3D& v = As<aiVector3D>(entry);
        return QVariantList{static_cast<double>(v.x), static_cast<double>(v.y), static_cast<double>(v.z)};
    }
    default:
        return {};
    }
}

/// As the importer calls itself.
QString FormatOf(const aiScene& source)
{
    aiString format;
    if (source.mMetaData) source.mMetaData->Get(AI_METADATA_SOURCE_FORMAT, format);
    return ToText(format);
}

} // namespace

QMap<QString, QVariant> ReadMetadata(const aiScene& source)
{
    struct Group {
        QString prefix;
        const aiMetadata* metadata;
    };
    QMap<QString, QVariant> values;
    std::vector<Group> pending{{QString(), source.mMetaData}};
    while (!pending.empty()) {
        const Group group = pending.back();
        pending.pop_back();
        for (unsigned int i = 0; group.metadata && i < group.metadata->mNumProperties; ++i) {
            const aiMetadataEntry& entry = group.metadata->mValues[i];
            const QString name = group.prefix + ToText(group.metadata->mKeys[i]);
            const QVariant value = entry.mData ? ValueOf(entry) : QVariant();
            if (entry.mType == AI_AIMETADATA)
                pending.push_back({name + QLatin1Char('.'), static_cast<const aiMetadata*>(entry.mData)});
            else if (value.isValid())
                values.insert(name, value);
        }
    }
    return values;
}

TVec3<float> UpAxisOf(const aiScene& source)
{
    int axis = 1;
    int sign = 1;
    if (source.mMetaData) {
        source.mMetaData->Get("UpAxis", axis);
        source.mMetaData->Get("UpAxisSign", sign);
    }
    const float length = sign < 0 ? -1.0f : 1.0f;
    return {axis == 0 ? length : 0.0f, axis != 0 && axis != 2 ? length : 0.0f, axis == 2 ? length : 0.0f};
}

float MillimetersPerUnitOf(const aiScene& source)
{
    if (!source.mMetaData)
        return 0.0f;
    float centimeters = 0.0f;
    if (source.mMetaData->Get("UnitScaleFactor", centimeters)) {
        const float millimeters = centimeters * kMillimetersPerCentimeter;
        return std::isfinite(millimeters) && millimeters > 0.0f ? millimeters : 0.0f;
    }
    const QString name = FormatOf(source);
    const bool inMeters = name.startsWith(QLatin1String("Collada")) || name.startsWith(QLatin1String("glTF"));
    return inMeters ? kMillimetersPerMeter : 0.0f;
}

bool HasLinearColors(const aiScene& source)
{
    return FormatOf(source).startsWith(QLatin1String("glTF2"));
}

} // namespace Host
