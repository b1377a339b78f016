#include "reference/plugins/scene-file/SceneBuilder.h"

#include "lumenta/files/Paths.h"
#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IImage.h"
#include "lumenta/interfaces/IImageManager.h"
#include "lumenta/interfaces/ILightNode.h"
#include "lumenta/interfaces/IMaterial.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/interfaces/IScene.h"
#include "lumenta/platform/IMeshNodeBuilder.h"
#include "lumenta/serializers/ImageHelpers.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QPointer>

#include <algorithm>
#include <cstring>
#include <memory>

namespace Host {

namespace {

/// Gives back, when it ends, the images that were loaded for a document.
class LoadedImages final : public QObject {
public:
    explicit LoadedImages(IImageManager* pManager)
        : m_pManager(pManager)
    {
        setObjectName(Name());
    }

    ~LoadedImages() override
    {
        for (const QPointer<IImage>& pImage : m_images)
            if (m_pManager && pImage) m_pManager->ReleaseImage(pImage);
    }

    IImage* Add(IImage* pImage)
    {
        m_images.emplace_back(pImage);
        return pImage;
    }

    /// Ends those of the scene's document before. Now, so that none of them
    /// stands for a file that has changed.
    static void ReturnThoseOf(IScene& scene) { delete scene.findChild<QObject*>(Name(), Qt::FindDirectChildrenOnly); }

    static void HandOver(std::unique_ptr<LoadedImages> images, IScene& scene)
    {
        if (!images->m_images.empty()) images.release()->setParent(&scene);
    }

private:
    static QString Name() { return QStringLiteral("scene-file-images"); }

    const QPointer<IImageManager> m_pManager;
    std::vector<QPointer<IImage>> m_images;
};

class Bracket {
public:
    Bracket(IScene& scene, const sSceneModifications& planned)
        : m_scene(scene)
    {
        m_scene.BeginUpdate(planned);
    }
    ~Bracket() { m_scene.EndUpdate(); }
    Bracket(const Bracket&) = delete;
    Bracket& operator=(const Bracket&) = delete;

private:
    IScene& m_scene;
};

/// Also where values are equal and bits are not, as those of 0 and −0.
void SetMatrix(INode& node, const Matrix& matrix)
{
    const bool isSame = std::memcmp(node.GetMatrix().m, matrix.m, sizeof matrix.m) == 0;
    if (!isSame && node.GetMatrix() == matrix) {
        Matrix other;
        other.m[0] = matrix.m[0] == 0.0f ? 1.0f : 0.0f;
        node.SetMatrix(other);
    }
    node.SetMatrix(matrix);
}

class SceneBuilder {
public:
    SceneBuilder(StoredDocument& document, const QString& fileName, IScene& scene, IImageManager* pImages,
                 QStringList& warnings)
        : m_document(document)
        , m_fileName(fileName)
        , m_folder(QFileInfo(fileName).absolutePath())
        , m_scene(scene)
        , m_pImages(pImages)
        , m_warnings(warnings)
        , m_loaded(std::make_unique<LoadedImages>(pImages))
        , m_images(document.images.size())
    {
    }

    void Build()
    {
        sSceneModifications planned;
        planned.strTitle = QStringLiteral("Open '%1'").arg(QFileInfo(m_fileName).fileName());
        planned.materialsChanged = true;
        const Bracket bracket(m_scene, planned);
        m_scene.Clear();
        LoadedImages::ReturnThoseOf(m_scene);
        m_scene.SetFileName(QFileInfo(m_fileName).absoluteFilePath());
        WarnOfMissingManager();
        AddMaterials();
        AddNodes();
        SetUp(m_document.settings);
        m_scene.GetCamera()->SetState(m_document.camera);
        m_scene.GetCamera()->SetLocked(m_document.isCameraLocked);
        LoadedImages::HandOver(std::move(m_loaded), m_scene);
        m_scene.SetModified(false);
    }

private:
    // Materials.

    void AddMaterials()
    {
        for (const StoredMaterial& stored : m_document.materials) {
            IMaterial* const pMaterial =
                m_materials.empty() ? m_scene.GetDefaultMaterial() : m_scene.CreateMaterial(stored.name);
            m_materials.push_back(pMaterial);
            pMaterial->SetName(stored.name);
            pMaterial->SetParameters(stored.parameters);
            if (m_pImages) LoadImages(stored, *pMaterial);
        }
    }

    void LoadImages(const StoredMaterial& stored, IMaterial& material)
    {
        for (std::size_t i = 0; i < stored.images.size(); ++i) {
            if (!stored.images[i]) continue;
            const QString user = QStringLiteral("Material '%1'").arg(stored.name);
            material.SetImage(static_cast<eMaterialSlot>(i), EmbeddedImage(*stored.images[i], user));
        }
        QString failure;
        try {
            material.LoadImages(*m_pImages, m_folder);
        } catch (const Exception& exception) {
            failure = exception.GetErrorText();
        }
        for (std::size_t i = 0; i < stored.images.size(); ++i) {
            const auto slot = static_cast<eMaterialSlot>(i);
            const QString file = material.GetImageFile(slot);
            if (!file.isEmpty() && !stored.images[i] && !material.GetImage(slot))
                WarnOfFile(QStringLiteral("Material '%1'").arg(stored.name), file, failure);
        }
    }

    void WarnOfFile(const QString& user, const QString& file, const QString& failure)
    {
        const QString found = TryToFindFilePessimistic(file, m_folder);
        m_warnings += found.isEmpty()
                          ? QStringLiteral("%1: the image '%2' was not found from '%3'").arg(user, file, m_folder)
                          : QStringLiteral("%1: the image '%2' can't be read. %3").arg(user, found, failure).trimmed();
    }

    void WarnOfMissingManager()
    {
        const bool hasBackground = !m_document.settings.backgroundFile.isEmpty();
        if (!m_pImages && (hasBackground || !m_document.images.empty()))
            m_warnings += QStringLiteral("Images that are in the document, and that of the background, were left out: "
                                         "this program loads none");
    }

    /// Null, after a warning, where it can't be read.
    IImage* EmbeddedImage(std::size_t nImage, const QString& user)
    {
        if (m_images[nImage]) return m_images[nImage];
        const QByteArray& png = m_document.images[nImage];
        const QByteArray hash = QCryptographicHash::hash(png, QCryptographicHash::Sha256).toHex();
        QString failure;
        try {
            const QString name = QStringLiteral("embedded-%1.png").arg(QLatin1String(hash));
            if (IImage* const pImage = m_pImages->DecodeImage(png, name)) m_images[nImage] = m_loaded->Add(pImage);
        } catch (const Exception& exception) {
            failure = exception.GetErrorText();
        }
        if (!m_images[nImage])
            m_warnings +=
                QStringLiteral("%1: an image that is in the document can't be read. %2").arg(user, failure).trimmed();
        return m_images[nImage];
    }

    IImage* BackgroundImage(const StoredSettings& settings)
    {
        const QString user = QStringLiteral("Background");
        if (settings.backgroundImage) return EmbeddedImage(*settings.backgroundImage, user);
        QString failure;
        try {
            QString resolved;
            IImage* const pImage = ImageLoadingHelper(m_pImages, m_folder).LoadImage(settings.backgroundFile, resolved);
            if (pImage) return m_loaded->Add(pImage);
        } catch (const Exception& exception) {
            failure = exception.GetErrorText();
        }
        if (!settings.backgroundFile.isEmpty()) WarnOfFile(user, settings.backgroundFile, failure);
        return nullptr;
    }

    // Nodes.

    void AddNodes()
    {
        std::vector<INode*> nodes;
        nodes.reserve(m_document.nodes.size());
        for (StoredNode& stored : m_document.nodes) {
            INode* const pNode = stored.parent ? AddNode(stored, *nodes[*stored.parent]) : m_scene.GetRoot();
            nodes.push_back(pNode);
            pNode->SetName(stored.name);
            pNode->SetVisible(stored.isVisible);
            if (stored.parent) SetMatrix(*pNode, stored.matrix);
        }
    }

    INode* AddNode(StoredNode& stored, INode& parent)
    {
        if (stored.mesh) return AddMeshNode(stored, parent);
        if (!stored.light) return parent.CreateGroup(stored.name);
        INode* const pNode = parent.CreateLight(stored.name);
        if (auto* const pLight = qobject_cast<ILightNode*>(pNode)) {
            pLight->SetColor(stored.light->color);
            pLight->SetIntensity(stored.light->intensity);
            pLight->SetRadius(stored.light->radius);
            pLight->SetCastsShadows(stored.light->castsShadows);
        }
        return pNode;
    }

    INode* AddMeshNode(StoredNode& stored, INode& parent)
    {
        std::vector<StoredMesh>& meshes = stored.mesh->meshes;
        const std::size_t nBefore = parent.GetChildren().size();
        const std::unique_ptr<IMeshNodeBuilder> builder(m_scene.CreateMeshBuilder(&parent));
        builder->BeginModel(stored.name, meshes.size());
        for (StoredMesh& mesh : meshes) {
            // Those of one name come into one node.
            builder->AddMeshNode(meshes.front().name, mesh.vertices, mesh.indices, QString(), {});
            mesh.vertices = {}; // large, and no longer needed
            mesh.indices = {};
        }
        builder->EndModel();
        WarnOfNames(stored);
        // A host may have no use for meshes without triangles.
        INode* const pNode =
            parent.GetChildren().size() > nBefore ? parent.GetChildren().back() : parent.CreateGroup(stored.name);
        if (auto* const pMeshNode = qobject_cast<IMeshNode*>(pNode)) {
            pMeshNode->SetExcludedFromTracing(stored.mesh->isExcluded);
            const std::size_t nMeshes = std::min(meshes.size(), pMeshNode->GetMeshes().size());
            for (std::size_t i = 0; i < nMeshes; ++i)
                pMeshNode->SetMaterial(i, m_materials[meshes[i].material]);
        }
        return pNode;
    }

    void WarnOfNames(const StoredNode& stored)
    {
        const std::vector<StoredMesh>& meshes = stored.mesh->meshes;
        const QString name = meshes.front().name;
        if (std::any_of(meshes.begin(), meshes.end(), [&](const StoredMesh& mesh) { return mesh.name != name; }))
            m_warnings += QStringLiteral("'%1': all of its meshes are now called '%2'").arg(stored.name, name);
    }

    // What is neither.

    void SetUp(const StoredSettings& settings)
    {
        m_scene.SetGroundPlaneEnabled(settings.hasGround);
        m_scene.SetGroundShadowEnabled(settings.hasGroundShadow);
        m_scene.SetBackgroundMode(static_cast<eBackgroundMode>(settings.backgroundMode));
        m_scene.SetBackgroundColor(settings.backgroundColor);
        if (m_pImages) m_scene.SetBackgroundImage(BackgroundImage(settings));
        m_scene.SetAmbientLight(settings.ambientLight);
        m_scene.SetSunDirection(settings.sunDirection);
        m_scene.SetSunLight(settings.sunLight);
        m_scene.SetMillimetersPerUnit(settings.millimetersPerUnit);
        m_scene.SetRenderSize(settings.renderSize);
        if (settings.nextObject) m_scene.setProperty("object-creator-next-index", *settings.nextObject);
    }

    StoredDocument& m_document;
    const QString m_fileName;
    const QString m_folder;
    IScene& m_scene;
    IImageManager* const m_pImages;
    QStringList& m_warnings;
    std::unique_ptr<LoadedImages> m_loaded;
    std::vector<IImage*> m_images; ///< Embedded ones, as far as they were needed.
    std::vector<IMaterial*> m_materials;
};

} // namespace

void BuildScene(StoredDocument& document, const QString& fileName, IScene& scene, IImageManager* pImages,
                QStringList& warnings)
{
    SceneBuilder(document, fileName, scene, pImages, warnings).Build();
}

} // namespace Host
