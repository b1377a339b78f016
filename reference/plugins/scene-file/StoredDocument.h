#pragma once

#include "lumenta/foundation/Color.h"
#include "lumenta/foundation/Matrix.h"
#include "lumenta/foundation/MeshVertex.h"
#include "lumenta/interfaces/IFreeCamera.h"
#include "lumenta/interfaces/SignalArguments.h"

#include <QMap>
#include <QSize>
#include <QVariant>

#include <array>
#include <optional>
#include <vector>

namespace Host {

/// What the slots' files are called among the parameters of a material.
constexpr std::array<const char*, eMaterialSlotCount> kSlotNames{
    "texture", "specularTexture", "reflectionTexture", "opacityTexture", "bumpTexture", "emissionTexture"};

// A document as it is stored, before it becomes a scene. Whatever refers to
// something by its index refers to something that is there.

struct StoredMesh {
    QString name;
    std::vector<MeshVertex> vertices;
    std::vector<unsigned int> indices; ///< Three per triangle.
    std::size_t material = 0;
};

struct StoredMeshNode {
    bool isExcluded = false;
    std::vector<StoredMesh> meshes; ///< At least one.
};

struct StoredLight {
    ColorF color;
    float intensity = 0.0f;
    float radius = 0.0f;
    bool castsShadows = false;
};

/// A group, a mesh node or a light.
struct StoredNode {
    QString name;
    Matrix matrix;
    bool isVisible = true;
    std::optional<std::size_t> parent; ///< Comes earlier; none for the root, the first.
    std::optional<StoredMeshNode> mesh;
    std::optional<StoredLight> light;
};

struct StoredMaterial {
    QString name;
    QMap<QString, QVariant> parameters;
    std::array<std::optional<std::size_t>, eMaterialSlotCount> images; ///< Embedded ones.
};

struct StoredSettings {
    bool hasGround = false;
    bool hasGroundShadow = false;
    int backgroundMode = 0;
    ColorF backgroundColor;
    QString backgroundFile;
    std::optional<std::size_t> backgroundImage; ///< An embedded one.
    ColorF ambientLight;
    TVec3<float> sunDirection;
    ColorF sunLight;
    float millimetersPerUnit = 0.0f;
    QSize renderSize;
    std::optional<int> nextObject; ///< Where the numbering of added meshes goes on.
};

struct StoredDocument {
    StoredSettings settings;
    sCameraState camera;
    bool isCameraLocked = false;
    std::vector<StoredMaterial> materials; ///< The default one first.
    std::vector<StoredNode> nodes;         ///< In tree order, the root first.
    std::vector<QByteArray> images;        ///< As PNG.
};

/// Reads the body of a document's file.
/// \throws Flaw it makes no sense
StoredDocument ParseDocument(const QByteArray& body);

} // namespace Host
