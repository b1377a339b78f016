#include "reference/plugins/scene-file/StoredDocument.h"

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IScene.h"
#include "lumenta/materials/MaterialXml.h"
#include "reference/plugins/scene-file/CborInput.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Host {

namespace {

constexpr bool kOptional = true;
constexpr int kLargestInt = std::numeric_limits<int>::max();

/// Reads each part into its place.
class DocumentParser {
public:
    DocumentParser(CborInput& input, StoredDocument& document)
        : m_input(input)
        , m_document(document)
    {
    }

    void Read()
    {
        m_input.ReadMap({
            {"scene", [this] { ReadSettings(m_document.settings); }},
            {"camera", [this] { ReadCamera(m_document.camera); }},
            {"materials", [this] { m_input.ReadArray([this] { ReadMaterialItem(); }); }},
            {"nodes", [this] { m_input.ReadArray([this] { ReadNode(); }); }},
            {"images", [this] { m_input.ReadArray([this] { m_document.images.push_back(m_input.ReadBytes()); }); }},
        });
        m_input.End();
    }

private:
    void ReadSettings(StoredSettings& settings)
    {
        m_input.ReadMap({
            {"ground", [&] { settings.hasGround = m_input.ReadBool(); }},
            {"groundShadow", [&] { settings.hasGroundShadow = m_input.ReadBool(); }},
            {"backgroundMode", [&] { settings.backgroundMode = ReadInt(eBackgroundStudio, eBackgroundImage); }},
            {"backgroundColor", [&] { m_input.ReadRecord(settings.backgroundColor); }},
            {"backgroundFile", [&] { settings.backgroundFile = m_input.ReadText(); }, kOptional},
            {"backgroundImage", [&] { settings.backgroundImage = m_input.ReadIndex(); }, kOptional},
            {"ambientLight", [&] { m_input.ReadRecord(settings.ambientLight); }},
            {"sunDirection", [&] { m_input.ReadRecord(settings.sunDirection); }},
            {"sunLight", [&] { m_input.ReadRecord(settings.sunLight); }},
            {"millimetersPerUnit", [&] { settings.millimetersPerUnit = ReadMillimeters(); }},
            {"renderWidth", [&] { settings.renderSize.setWidth(ReadInt(1, kLargestInt)); }},
            {"renderHeight", [&] { settings.renderSize.setHeight(ReadInt(1, kLargestInt)); }},
            {"nextObject", [&] { settings.nextObject = ReadInt(-kLargestInt - 1, kLargestInt); }, kOptional},
        });
    }

    void ReadCamera(sCameraState& camera)
    {
        m_input.ReadMap({
            {"target", [&] { m_input.ReadRecord(camera.target); }},
            {"distance", [&] { camera.distance = m_input.ReadFloat(); }},
            {"heading", [&] { camera.heading = m_input.ReadFloat(); }},
            {"pitch", [&] { camera.pitch = m_input.ReadFloat(); }},
            {"fieldOfView", [&] { camera.fieldOfView = m_input.ReadFloat(); }},
            {"frameAspect", [&] { camera.frameAspect = m_input.ReadFloat(); }},
            {"locked", [&] { m_document.isCameraLocked = m_input.ReadBool(); }},
        });
    }

    void ReadMaterialItem()
    {
        StoredMaterial& material = m_document.materials.emplace_back();
        m_input.ReadMap({
            {"name", [&] { material.name = m_input.ReadText(); }},
            {"xml", [&] { ReadXml(material); }},
            {"images", [&] { ReadSlots(material); }, kOptional},
        });
    }

    void ReadXml(StoredMaterial& material)
    {
        try {
            QString ignored; // not every name fits into XML, so it is stored apart
            ReadMaterial(m_input.ReadText().toUtf8(), ignored, material.parameters);
        } catch (const InvalidParameterException& exception) {
            throw Flaw{QStringLiteral("this is no material: %1").arg(exception.GetErrorText())};
        }
    }

    void ReadSlots(StoredMaterial& material)
    {
        auto& images = material.images;
        static_assert(kSlotNames.size() == 6, "each of the slots is listed");
        m_input.ReadMap({
            {kSlotNames[0], [&] { images[0] = m_input.ReadIndex(); }, kOptional},
            {kSlotNames[1], [&] { images[1] = m_input.ReadIndex(); }, kOptional},
            {kSlotNames[2], [&] { images[2] = m_input.ReadIndex(); }, kOptional},
            {kSlotNames[3], [&] { images[3] = m_input.ReadIndex(); }, kOptional},
            {kSlotNames[4], [&] { images[4] = m_input.ReadIndex(); }, kOptional},
            {kSlotNames[5], [&] { images[5] = m_input.ReadIndex(); }, kOptional},
        });
    }

    void ReadNode()
    {
        const std::size_t nBefore = m_document.nodes.size();
        StoredNode& node = m_document.nodes.emplace_back();
        m_input.ReadMap({
            {"parent", [&] { node.parent = m_input.ReadIndex(); }, kOptional},
            {"name", [&] { node.name = m_input.ReadText(); }},
            {"matrix", [&] { m_input.ReadRecord(node.matrix); }},
            {"visible", [&] { node.isVisible = m_input.ReadBool(); }},
            {"mesh", [&] { ReadMeshNode(node.mesh.emplace()); }, kOptional},
            {"light", [&] { ReadLight(node.light.emplace()); }, kOptional},
        });
        const bool isRoot = nBefore == 0;
        if (isRoot == node.parent.has_value() || (!isRoot && *node.parent >= nBefore))
            throw Flaw{QStringLiteral("this node has no place in the tree")};
        if ((isRoot && (node.mesh || node.light)) || (node.mesh && node.light))
            throw Flaw{QStringLiteral("no node can be of this kind")};
    }

    void ReadMeshNode(StoredMeshNode& node)
    {
        m_input.ReadMap({
            {"excluded", [&] { node.isExcluded = m_input.ReadBool(); }},
            {"source", [&] { m_input.ReadText(); }},
            {"meshes", [&] { m_input.ReadArray([&] { ReadMesh(node.meshes.emplace_back()); }); }},
        });
        if (node.meshes.empty()) throw Flaw{QStringLiteral("there are no meshes")};
    }

    void ReadMesh(StoredMesh& mesh)
    {
        m_input.ReadMap({
            {"name", [&] { mesh.name = m_input.ReadText(); }},
            {"material", [&] { mesh.material = m_input.ReadIndex(); }},
            {"vertices", [&] { mesh.vertices = m_input.ReadRecords<MeshVertex>(kFloatArray); }},
            {"indices", [&] { mesh.indices = m_input.ReadRecords<unsigned int>(kWordArray); }},
        });
        const auto isVertex = [&](unsigned int index) { return index < mesh.vertices.size(); };
        if (mesh.indices.size() % 3 != 0 || !std::all_of(mesh.indices.begin(), mesh.indices.end(), isVertex))
            throw Flaw{QStringLiteral("the indices are no triangles of the vertices")};
    }

    void ReadLight(StoredLight& light)
    {
        m_input.ReadMap({
            {"color", [&] { m_input.ReadRecord(light.color); }},
            {"intensity", [&] { light.intensity = m_input.ReadFloat(); }},
            {"radius", [&] { light.radius = m_input.ReadFloat(); }},
            {"shadows", [&] { light.castsShadows = m_input.ReadBool(); }},
        });
    }

    int ReadInt(int least, int most) { return static_cast<int>(m_input.ReadInteger(least, most)); }

    float ReadMillimeters()
    {
        const float millimeters = m_input.ReadFloat();
        if (!(millimeters > 0.0f) || !std::isfinite(millimeters))
            throw Flaw{QStringLiteral("expected a length above 0")};
        return millimeters;
    }

    CborInput& m_input;
    StoredDocument& m_document;
};

void CheckImage(const std::optional<std::size_t>& image, const StoredDocument& document, const QString& place)
{
    if (image && *image >= document.images.size())
        throw Flaw{QStringLiteral("an image is referred to that is not there"), place};
}

/// What could not be told before all was read.
void CheckReferences(const StoredDocument& document)
{
    if (document.nodes.empty()) throw Flaw{QStringLiteral("there is no root"), QStringLiteral("nodes")};
    if (document.materials.empty())
        throw Flaw{QStringLiteral("there is no default material"), QStringLiteral("materials")};
    CheckImage(document.settings.backgroundImage, document, QStringLiteral("scene"));
    for (std::size_t i = 0; i < document.materials.size(); ++i)
        for (const auto& image : document.materials[i].images)
            CheckImage(image, document, QStringLiteral("materials[%1]").arg(i));
    for (std::size_t i = 0; i < document.nodes.size(); ++i) {
        if (!document.nodes[i].mesh) continue;
        for (const StoredMesh& mesh : document.nodes[i].mesh->meshes)
            if (mesh.material >= document.materials.size())
                throw Flaw{QStringLiteral("a material is referred to that is not there"),
                           QStringLiteral("nodes[%1]").arg(i)};
    }
}

} // namespace

StoredDocument ParseDocument(const QByteArray& body)
{
    StoredDocument document;
    CborInput input(body);
    try {
        DocumentParser(input, document).Read();
    } catch (Flaw& flaw) {
        if (flaw.place.startsWith(QLatin1Char('.'))) flaw.place.remove(0, 1);
        throw;
    }
    CheckReferences(document);
    return document;
}

} // namespace Host
