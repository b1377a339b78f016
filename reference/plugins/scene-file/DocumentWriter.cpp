#include "reference/plugins/scene-file/DocumentWriter.h"

#include "lumenta/files/Paths.h"
#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IImage.h"
#include "lumenta/interfaces/ILightNode.h"
#include "lumenta/interfaces/IMaterial.h"
#include "lumenta/interfaces/IMesh.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/interfaces/IScene.h"
#include "lumenta/interfaces/ISnapshotManager.h"
#include "lumenta/materials/MaterialXml.h"
#include "reference/host/images/Png.h"
#include "reference/host/images/References.h"
#include "reference/plugins/scene-file/CborInput.h"
#include "reference/plugins/scene-file/StoredDocument.h"

#include <QCborStreamWriter>

#include <new>
#include <unordered_map>

namespace Host {

namespace {

using Parameters = QMap<QString, QVariant>;

bool IsReadBack(const QString& name, const Parameters& parameters)
{
    QString readName;
    Parameters read;
    try {
        ReadMaterial(MaterialToXml(name, parameters), readName, read);
    } catch (const InvalidParameterException&) {
        return false;
    }
    return readName == name && read == parameters;
}

/// The material as XML. A name that can't stand in it is left out.
/// \throws SavingException a parameter can't stand in it
QByteArray XmlOf(const QString& name, const Parameters& parameters)
{
    for (const QString& xmlName : {name, QString()})
        if (IsReadBack(xmlName, parameters)) return MaterialToXml(xmlName, parameters);
    QString culprit;
    for (auto it = parameters.begin(); it != parameters.end(); ++it)
        if (!IsReadBack(QString(), {{it.key(), it.value()}})) culprit = it.key();
    throw SavingException(QStringLiteral("Material '%1' can't be saved: its parameter '%2' holds characters that "
                                         "can't stand in XML")
                              .arg(name, culprit));
}

/// A node, and the place of its parent in the list.
struct ListedNode {
    INode* pNode;
    std::size_t parent;
};

/// All nodes in tree order, the root first.
std::vector<ListedNode> ListNodes(const IScene& scene)
{
    std::vector<ListedNode> listed;
    std::vector<ListedNode> pending{{scene.GetRoot(), 0}};
    while (!pending.empty()) {
        const ListedNode next = pending.back();
        pending.pop_back();
        const std::size_t place = listed.size();
        listed.push_back(next);
        const std::vector<INode*>& children = next.pNode->GetChildren();
        for (auto it = children.rbegin(); it != children.rend(); ++it)
            pending.push_back({*it, place});
    }
    return listed;
}

template <typename Record>
std::size_t BytesOf(const std::vector<Record>& records)
{
    return records.size() * sizeof(Record);
}

void CheckSize(const std::vector<ListedNode>& nodes)
{
    quint64 nBytes = 0;
    for (const ListedNode& listed : nodes)
        if (const auto* const pMeshNode = qobject_cast<IMeshNode*>(listed.pNode))
            for (const IMesh* pMesh : pMeshNode->GetMeshes())
                nBytes += BytesOf(pMesh->GetVertices()) + BytesOf(pMesh->GetIndices());
    if (nBytes > kLargestBody / 2)
        throw SavingException(QStringLiteral("The scene is too large to be saved: its meshes have %1 bytes, and a "
                                             "document has room for %2")
                                  .arg(nBytes)
                                  .arg(kLargestBody / 2));
}

class DocumentWriter {
public:
    DocumentWriter(const IScene& scene, const QString& folder, QStringList& warnings)
        : m_scene(scene)
        , m_oldFolder(FolderOf(scene.GetFileName()))
        , m_newFolder(folder)
        , m_warnings(warnings)
        , m_writer(&m_body)
    {
    }

    QByteArray Write()
    {
        WarnOfState();
        const std::vector<ListedNode> nodes = ListNodes(m_scene);
        CheckSize(nodes);
        StartMap(5);
        WriteSettings();
        WriteCamera();
        WriteMaterials();
        Key("nodes");
        m_writer.startArray(nodes.size());
        for (const ListedNode& listed : nodes)
            WriteNode(listed);
        m_writer.endArray();
        WriteImages();
        m_writer.endMap();
        return m_body;
    }

private:
    void WarnOfState()
    {
        if (!m_scene.GetAnimations().empty())
            m_warnings +=
                QStringLiteral("Animations of models are not stored: the meshes are kept as they are posed now");
        if (!m_scene.GetSnapshotManager()->GetSnapshots().empty())
            m_warnings += QStringLiteral("Snapshots are not stored");
    }

    // Values.

    void StartMap(std::size_t nFields) { m_writer.startMap(nFields); }
    void Key(const char* name) { m_writer.append(QLatin1String(name)); }

    void Write(const QString& text)
    {
        if (text.isValidUtf16()) {
            m_writer.append(QStringView(text));
            return;
        }
        QByteArray bytes(text.size() * 2, Qt::Uninitialized);
        qToLittleEndian<quint16>(text.constData(), text.size(), bytes.data());
        m_writer.append(bytes);
    }

    void Write(bool value) { m_writer.append(value); }
    void Write(float value) { m_writer.append(value); }
    void Write(int value) { m_writer.append(static_cast<qint64>(value)); }
    void Write(std::size_t value) { m_writer.append(static_cast<quint64>(value)); }
    void Write(const ColorF& color) { WriteNumbers(kFloatArray, &color, sizeof color); }
    void Write(const TVec3<float>& vector) { WriteNumbers(kFloatArray, &vector, sizeof vector); }
    void Write(const Matrix& matrix) { WriteNumbers(kFloatArray, matrix.m, sizeof matrix.m); }
    void Write(const std::vector<MeshVertex>& vertices)
    {
        WriteNumbers(kFloatArray, vertices.data(), BytesOf(vertices));
    }
    void Write(const std::vector<unsigned int>& indices) { WriteNumbers(kWordArray, indices.data(), BytesOf(indices)); }

    void WriteNumbers(QCborTag tag, const void* pNumbers, std::size_t nBytes)
    {
        QByteArray bytes(static_cast<int>(nBytes), Qt::Uninitialized);
        if (nBytes > 0) // else there may be no address either
            qToLittleEndian<quint32>(pNumbers, static_cast<qsizetype>(nBytes / 4), bytes.data());
        m_writer.append(tag);
        m_writer.append(bytes);
    }

    template <typename Value>
    void WriteField(const char* name, const Value& value)
    {
        Key(name);
        Write(value);
    }

    // Parts.

    void WriteSettings()
    {
        const std::optional<std::size_t> image = BackgroundToEmbed();
        const QString file = image || !m_scene.GetBackgroundImage()
                                 ? QString()
                                 : Rebase(m_scene.GetBackgroundImage()->GetFileName()).text;
        const QVariant nextObject = m_scene.property("object-creator-next-index");
        Key("scene");
        StartMap(10 + (image ? 1u : 0u) + (file.isEmpty() ? 0u : 1u) + (nextObject.isValid() ? 1u : 0u));
        WriteField("ground", m_scene.IsGroundPlaneEnabled());
        WriteField("groundShadow", m_scene.IsGroundShadowEnabled());
        WriteField("backgroundMode", static_cast<int>(m_scene.GetBackgroundMode()));
        WriteField("backgroundColor", m_scene.GetBackgroundColor());
        if (!file.isEmpty()) WriteField("backgroundFile", file);
        if (image) WriteField("backgroundImage", *image);
        WriteField("ambientLight", m_scene.GetAmbientLight());
        WriteField("sunDirection", m_scene.GetSunDirection());
        WriteField("sunLight", m_scene.GetSunLight());
        WriteField("millimetersPerUnit", m_scene.GetMillimetersPerUnit());
        WriteField("renderWidth", m_scene.GetRenderSize().width());
        WriteField("renderHeight", m_scene.GetRenderSize().height());
        if (nextObject.isValid()) WriteField("nextObject", nextObject.toInt());
        m_writer.endMap();
    }

    void WriteCamera()
    {
        const sCameraState camera = m_scene.GetCamera()->GetState();
        Key("camera");
        StartMap(7);
        WriteField("target", camera.target);
        WriteField("distance", camera.distance);
        WriteField("heading", camera.heading);
        WriteField("pitch", camera.pitch);
        WriteField("fieldOfView", camera.fieldOfView);
        WriteField("frameAspect", camera.frameAspect);
        WriteField("locked", m_scene.GetCamera()->IsLocked());
        m_writer.endMap();
    }

    void WriteMaterials()
    {
        const std::vector<IMaterial*>& materials = m_scene.GetMaterials();
        Key("materials");
        m_writer.startArray(materials.size());
        for (const IMaterial* pMaterial : materials) {
            m_materialPlaces.emplace(pMaterial, m_materialPlaces.size());
            WriteMaterial(*pMaterial);
        }
        m_writer.endArray();
    }

    void WriteMaterial(const IMaterial& material)
    {
        Parameters parameters = ParametersOf(material);
        std::vector<std::pair<const char*, std::size_t>> embedded;
        for (std::size_t i = 0; i < kSlotNames.size(); ++i) {
            const auto slot = static_cast<eMaterialSlot>(i);
            const QString file = material.GetImageFile(slot);
            const FileReference reference = Rebase(file);
            const auto image = ToEmbed(material.GetImage(slot), reference);
            if (image) embedded.emplace_back(kSlotNames[i], *image);
            // That of an image without a file may be a name that a model gave it.
            if (!file.isEmpty() && (!image || !reference.file.isEmpty()))
                parameters[QLatin1String(kSlotNames[i])] = reference.text;
        }
        if (parameters.isEmpty()) // without any, it would not be read back
            parameters[QStringLiteral("opacity")] = material.GetParameter(QStringLiteral("opacity")).toString();

        StartMap(embedded.empty() ? 2 : 3);
        WriteField("name", material.GetName());
        WriteField("xml", QString::fromUtf8(XmlOf(material.GetName(), parameters)));
        if (!embedded.empty()) {
            Key("images");
            StartMap(embedded.size());
            for (const auto& [name, image] : embedded)
                WriteField(name, image);
            m_writer.endMap();
        }
        m_writer.endMap();
    }

    /// That of the default one for what is none of the scene's.
    std::size_t PlaceOf(const IMaterial* pMaterial) const
    {
        const auto known = m_materialPlaces.find(pMaterial);
        return known == m_materialPlaces.end() ? 0 : known->second;
    }

    /// As the texts that are stored.
    Parameters ParametersOf(const IMaterial& material)
    {
        Parameters texts;
        const Parameters parameters = material.GetParameters();
        for (auto it = parameters.begin(); it != parameters.end(); ++it) {
            QVariant text = it.value();
            if (text.convert(QMetaType::QString))
                texts[it.key()] = text;
            else
                m_warnings +=
                    QStringLiteral("Material '%1': '%2' is left out, since it is nothing that a text can tell")
                        .arg(material.GetName(), it.key());
        }
        return texts;
    }

    void WriteNode(const ListedNode& listed)
    {
        const INode& node = *listed.pNode;
        const bool isRoot = &node == m_scene.GetRoot();
        const auto* const pMeshNode = qobject_cast<IMeshNode*>(listed.pNode);
        const auto* const pLight = qobject_cast<ILightNode*>(listed.pNode);
        const bool isMesh = pMeshNode && !pMeshNode->GetMeshes().empty() && !isRoot;
        const bool isLight = pLight && !isMesh && !isRoot;
        if (!isMesh && !isLight && node.GetType() != eNodeTypeGroup)
            m_warnings += QStringLiteral("'%1' is stored as a group: documents know only meshes, lights and groups")
                              .arg(node.GetName());
        StartMap(3u + (isRoot ? 0u : 1u) + (isMesh || isLight ? 1u : 0u));
        if (!isRoot) WriteField("parent", listed.parent);
        WriteField("name", node.GetName());
        WriteField("matrix", node.GetMatrix());
        WriteField("visible", node.IsVisible());
        if (isMesh) WriteMeshNode(*pMeshNode);
        if (isLight) WriteLight(*pLight);
        m_writer.endMap();
    }

    void WriteMeshNode(const IMeshNode& node)
    {
        Key("mesh");
        StartMap(3);
        WriteField("excluded", node.IsExcludedFromTracing());
        WriteField("source", node.GetSource());
        Key("meshes");
        m_writer.startArray(node.GetMeshes().size());
        for (std::size_t i = 0; i < node.GetMeshes().size(); ++i) {
            const IMesh& mesh = *node.GetMeshes()[i];
            StartMap(4);
            WriteField("name", mesh.GetName());
            WriteField("material", PlaceOf(node.GetMaterial(i)));
            WriteField("vertices", mesh.GetVertices());
            WriteField("indices", mesh.GetIndices());
            m_writer.endMap();
        }
        m_writer.endArray();
        m_writer.endMap();
    }

    void WriteLight(const ILightNode& light)
    {
        Key("light");
        StartMap(4);
        WriteField("color", light.GetColor());
        WriteField("intensity", light.GetIntensity());
        WriteField("radius", light.GetRadius());
        WriteField("shadows", light.CastsShadows());
        m_writer.endMap();
    }

    // Images.

    FileReference Rebase(const QString& text) const { return Rebased(text, m_oldFolder, m_newFolder); }

    /// The place among the embedded images, for one that is not that of the file.
    std::optional<std::size_t> ToEmbed(const IImage* pImage, const FileReference& reference)
    {
        if (!pImage) return std::nullopt;
        if (!reference.file.isEmpty() && SimplifyFilename(pImage->GetFileName()) == reference.file) return std::nullopt;
        const auto known = m_imagePlaces.find(pImage);
        if (known != m_imagePlaces.end()) return known->second;
        const QByteArray png = EncodedPng(pImage->ToQImage());
        if (png.isEmpty()) return std::nullopt;
        m_images.push_back(png);
        return m_imagePlaces[pImage] = m_images.size() - 1;
    }

    std::optional<std::size_t> BackgroundToEmbed()
    {
        const IImage* const pImage = m_scene.GetBackgroundImage();
        return pImage ? ToEmbed(pImage, Rebase(pImage->GetFileName())) : std::nullopt;
    }

    void WriteImages()
    {
        Key("images");
        m_writer.startArray(m_images.size());
        for (const QByteArray& image : m_images)
            m_writer.append(image);
        m_writer.endArray();
    }

    const IScene& m_scene;
    const QString m_oldFolder;
    const QString m_newFolder;
    QStringList& m_warnings;
    QByteArray m_body;
    QCborStreamWriter m_writer;
    std::unordered_map<const IMaterial*, std::size_t> m_materialPlaces;
    std::unordered_map<const IImage*, std::size_t> m_imagePlaces;
    std::vector<QByteArray> m_images;
};

} // namespace

QByteArray WriteDocument(const IScene& scene, const QString& folder, QStringList& warnings)
{
    try {
        QByteArray body = DocumentWriter(scene, folder, warnings).Write();
        if (static_cast<quint64>(body.size()) > kLargestBody) throw Flaw{QStringLiteral("it is too large")};
        ParseDocument(body); // what can't be opened again is noticed while it is still here
        return body;
    } catch (const Flaw& flaw) {
        throw SavingException(QStringLiteral("The scene can't be saved: %1").arg(flaw.GetText()));
    } catch (const std::bad_alloc&) {
        throw SavingException(QStringLiteral("The scene can't be saved: it does not fit in memory as a document"));
    }
}

} // namespace Host
