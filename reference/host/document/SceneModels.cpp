// What a scene does with models: their meshes, materials and animations.

#include "lumenta/foundation/Exceptions.h"
#include "reference/host/document/Mesh.h"
#include "reference/host/document/Newcomers.h"
#include "reference/host/document/Node.h"
#include "reference/host/document/Placement.h"
#include "reference/host/document/PosedModel.h"
#include "reference/host/document/Scene.h"
#include "reference/host/document/SceneMaterial.h"
#include "reference/host/document/Snapshots.h"
#include "reference/host/images/Image.h"
#include "reference/host/images/References.h"
#include "reference/host/Picture.h"

#include <QColor>
#include <QFileInfo>
#include <QPointer>

#include <algorithm>
#include <functional>
#include <map>
#include <utility>

namespace Host {

namespace {

const QString kTexture = QStringLiteral("texture");
const QString kDiffuse = QStringLiteral("diffuse");

QString NameOf(const Model& model)
{
    const QString name = QFileInfo(model.fileName).completeBaseName();
    if (!name.isEmpty()) return name;
    const bool hasName = model.scene->root && !model.scene->root->name.isEmpty();
    return hasName ? model.scene->root->name : QStringLiteral("Model");
}

/// What a model's file says of a material, as parameters of ours.
QMap<QString, QVariant> ParametersFrom(const QMap<QString, QVariant>& fromModel)
{
    QMap<QString, QVariant> parameters = fromModel;
    // In files it stands for the light of the sky, which a scene has of its own.
    parameters.remove(QStringLiteral("ambient"));
    if (parameters.contains(QStringLiteral("specular"))) parameters[QStringLiteral("specularLevel")] = 1.0;
    // Files often leave the colour of a textured material black, which would hide the texture.
    const QColor diffuse = parameters.value(kDiffuse).value<QColor>();
    const bool isBlack = !diffuse.isValid() || (diffuse.rgb() & RGB_MASK) == 0;
    if (isBlack && !parameters.value(kTexture).toString().isEmpty()) parameters[kDiffuse] = QColor(Qt::white);
    return parameters;
}

/// Hands each posed mesh to rewrite(part, vertices).
template <typename F>
class MeshRewriter final : public IMeshNodeBuilder {
public:
    MeshRewriter(std::vector<PosedModel::Part>& parts, const F& rewrite)
        : m_parts(parts)
        , m_rewrite(rewrite)
    {
    }

    void BeginModel(const QString&, std::size_t) override { m_nNext = 0; }
    void EndModel() override {}
    void AddMeshNode(const QString&, std::vector<MeshVertex>& vertices, std::vector<unsigned int>&, const QString&,
                     const QMap<QString, QVariant>&) override
    {
        if (m_nNext < m_parts.size()) m_rewrite(m_parts[m_nNext++], vertices);
    }

private:
    std::vector<PosedModel::Part>& m_parts;
    const F& m_rewrite;
    std::size_t m_nNext = 0;
};

void CheckTriangles(const char* method, const QString& strName, const std::vector<MeshVertex>& vertices,
                    const std::vector<unsigned int>& indices)
{
    const bool isSound =
        indices.size() % 3 == 0
        && std::all_of(indices.begin(), indices.end(), [&](unsigned int index) { return index < vertices.size(); });
    if (!isSound)
        throw InvalidParameterException(QLatin1String(method), QStringLiteral("indices"),
                                        QStringLiteral("They are no triangles of the mesh '%1'").arg(strName));
}

/// \throws LogicException it ended
Node& StillThere(const QPointer<Node>& pNode)
{
    if (!pNode) throw LogicException(QStringLiteral("A node was removed: nothing can be added to it"));
    return *pNode;
}

sSceneModifications PlannedAdding(const QString& strName)
{
    sSceneModifications planned;
    planned.strTitle = QStringLiteral("Add '%1'").arg(strName);
    return planned;
}

} // namespace

/// The materials that meshes bring, each once, and their images.
class Scene::ModelMaterials {
public:
    ModelMaterials() = default;
    ModelMaterials(QMap<QString, QImage> files, QMap<QString, QImage> embedded)
        : m_files(std::move(files))
        , m_embedded(std::move(embedded))
    {
    }

    /// From now on names of files, which count from the one folder, are made to
    /// count from the other.
    void Rebase(const QString& oldFolder, const QString& newFolder)
    {
        m_rebased = [=](const QString& name) { return Rebased(name, oldFolder, newFolder).text; };
    }

    /// Null for the default one.
    SceneMaterial* For(const PosedMesh& mesh)
    {
        if (mesh.materialName.isEmpty() && mesh.materialParameters.isEmpty()) return nullptr;
        const auto [first, last] = m_made.equal_range(mesh.materialName);
        const auto found = std::find_if(
            first, last, [&](const auto& known) { return known.second.parameters == mesh.materialParameters; });
        if (found != last) return found->second.pMaterial;
        auto material = std::make_unique<SceneMaterial>(mesh.materialName);
        material->SetParameters(ParametersFrom(mesh.materialParameters));
        material->SetImage(eMaterialSlotDiffuse, ImageOf(material->GetImageFile(eMaterialSlotDiffuse)));
        if (m_rebased) RenameFiles(*material);
        m_made.emplace(mesh.materialName, Made{mesh.materialParameters, material.get()});
        fresh.push_back(std::move(material));
        return fresh.back().get();
    }

    /// Before another model: what its scene has given up is made anew, and what
    /// it did not get to take over.
    void ForgetRemoved()
    {
        fresh.clear();
        images.clear();
        for (auto it = m_made.begin(); it != m_made.end();) {
            const SceneMaterial* const pMaterial = it->second.pMaterial;
            it = pMaterial && pMaterial->GetScene() ? std::next(it) : m_made.erase(it);
        }
    }

    // For the scene to take over.
    std::vector<std::unique_ptr<SceneMaterial>> fresh;
    std::vector<std::unique_ptr<Image>> images;

private:
    struct Made {
        QMap<QString, QVariant> parameters;
        QPointer<SceneMaterial> pMaterial;
    };

    Image* ImageOf(const QString& strName)
    {
        const auto known = m_known.constFind(strName);
        if (known != m_known.constEnd()) return *known;
        const bool isFile = m_files.contains(strName);
        const QImage pixels = isFile ? m_files.value(strName) : m_embedded.value(strName);
        if (pixels.isNull()) return nullptr;
        images.push_back(std::make_unique<Image>(pixels, isFile ? strName : QString()));
        return m_known[strName] = images.back().get();
    }

    void RenameFiles(SceneMaterial& material) const
    {
        for (int i = 0; i < eMaterialSlotCount; ++i) {
            const QString name = material.GetImageFile(static_cast<eMaterialSlot>(i));
            if (!name.isEmpty() && !m_embedded.contains(name))
                material.RenameImageFile(static_cast<eMaterialSlot>(i), m_rebased(name));
        }
    }

    const QMap<QString, QImage> m_files;
    const QMap<QString, QImage> m_embedded;
    std::function<QString(const QString&)> m_rebased; ///< Empty where names stay.
    QMap<QString, Image*> m_known;
    std::multimap<QString, Made> m_made; ///< By name.
};

/// Gathers the meshes of one model and adds them at its end.
class Scene::MeshBuilder final : public IMeshNodeBuilder {
public:
    explicit MeshBuilder(Node& parent)
        : m_pParent(&parent)
    {
    }

    void BeginModel(const QString& strName, std::size_t) override
    {
        m_strName = strName;
        m_collector.BeginModel(strName, 0); // a hint that comes from outside is not worth failing for
    }
    void EndModel() override
    {
        std::vector<PosedMesh> meshes = std::exchange(m_collector.meshes, {});
        if (meshes.empty()) return;
        Scene& scene = StillThere(m_pParent).SceneOrThrow();
        Change change(scene.m_batch, PlannedAdding(m_strName));
        StillThere(m_pParent).SceneOrThrow(); // a slot may have removed it
        Newcomers newcomers(scene, change);
        const std::vector<INode*> nodes =
            scene.PrepareMeshes(meshes, *m_pParent, QString(), m_materials, nullptr, newcomers);
        ReserveMore(m_pParent->m_children, nodes.size());
        m_pParent->m_children.insert(m_pParent->m_children.end(), nodes.begin(), nodes.end());
        newcomers.Hold();
        scene.TakeOver(m_materials, change);
    }
    void AddMeshNode(const QString& name, std::vector<MeshVertex>& vertices, std::vector<unsigned int>& indices,
                     const QString& materialName, const QMap<QString, QVariant>& materialParameters) override
    {
        CheckTriangles("IMeshNodeBuilder::AddMeshNode", name, vertices, indices);
        m_collector.AddMeshNode(name, vertices, indices, materialName, materialParameters);
    }

private:
    const QPointer<Node> m_pParent;
    QString m_strName;
    MeshCollector m_collector;
    ModelMaterials m_materials;
};

// -------------------------------------------------------------------- adding

IMeshNodeBuilder* Scene::CreateMeshBuilder(INode* pParent)
{
    return new MeshBuilder(Own(pParent, "IScene::CreateMeshBuilder"));
}

/// \return the new nodes, which are not yet among the parent's children
std::vector<INode*> Scene::PrepareMeshes(std::vector<PosedMesh>& meshes, Node& parent, const QString& strSource,
                                         ModelMaterials& materials, PosedModel* pModel, Newcomers& newcomers)
{
    materials.ForgetRemoved();
    std::vector<INode*> nodes;
    MeshNode* pNode = nullptr;
    for (PosedMesh& mesh : meshes) {
        if (!pNode || pNode->GetName() != mesh.name) {
            pNode = static_cast<MeshNode*>(
                &newcomers.Add(std::make_unique<MeshNode>(++m_nLastId, mesh.name, strSource), parent));
            nodes.push_back(pNode);
        }
        SceneMaterial* const pMaterial = materials.For(mesh);
        auto own = std::make_unique<Mesh>(mesh.name, std::move(mesh.vertices), std::move(mesh.indices));
        if (pModel) pModel->parts.push_back({pNode, own.get()});
        pNode->AddMesh(std::move(own), pMaterial);
    }
    ReserveMore(m_materials, materials.fresh.size());
    ReserveMore(m_images, materials.images.size());
    return nodes;
}

/// What the meshes that were prepared wear.
void Scene::TakeOver(ModelMaterials& materials, Change& change) noexcept
{
    for (std::unique_ptr<SceneMaterial>& material : std::exchange(materials.fresh, {}))
        AddMaterial(std::move(material), change);
    for (std::unique_ptr<Image>& image : std::exchange(materials.images, {}))
        m_images.push_back(std::move(image));
}

INode* Scene::AddMesh(INode* pParent, const QString& strName, std::vector<MeshVertex> vertices,
                      std::vector<unsigned int> indices)
{
    Node& parent = Own(pParent, "Scene::AddMesh");
    CheckTriangles("Scene::AddMesh", strName, vertices, indices);
    auto node = std::make_unique<MeshNode>(++m_nLastId, strName, QString());
    node->AddMesh(std::make_unique<Mesh>(strName, std::move(vertices), std::move(indices)), nullptr);
    return AddNode(std::move(node), parent);
}

INode* Scene::AddModel(Model&& model, INode* pParent, const QMap<QString, QImage>& images)
{
    Node& parent = Own(pParent, "Scene::AddModel");
    if (!model.scene)
        throw InvalidParameterException(QStringLiteral("Scene::AddModel"), QStringLiteral("model"),
                                        QStringLiteral("It is empty"));
    const QString name = NameOf(model);
    const QString source = model.fileName;
    ModelMaterials materials(images, model.embeddedImages);
    return HangModel(std::move(model), parent, name, source, materials);
}

INode* Scene::ReadModel(const QString& strName, const QString& strSource, Node* pParent)
{
    const QPointer<Node> parent = pParent; // a reader may let events through
    if (const std::unique_ptr<IGenerator> generator = m_maker ? m_maker(strSource) : nullptr)
        return HangMeshes(*generator, strName, strSource, parent);
    if (!m_reader)
        throw LoadingException(QStringLiteral("'%1' can't be loaded: nothing here reads models").arg(strSource));
    Model model = m_reader(strSource);
    if (!model.scene) throw LoadingException(QStringLiteral("'%1' can't be loaded: it holds no model").arg(strSource));
    StillThere(parent).SceneOrThrow();
    ModelMaterials materials({}, model.embeddedImages);
    if (!model.fileName.isEmpty()) materials.Rebase(FolderOf(model.fileName), FolderOf(m_strFileName));
    return HangModel(std::move(model), *parent, strName, strSource, materials);
}

/// As a group with all that the generator makes.
INode* Scene::HangMeshes(IGenerator& generator, const QString& strName, const QString& strSource,
                         const QPointer<Node>& parent)
{
    MeshCollector collector;
    generator.Generate(collector);
    for (const PosedMesh& mesh : collector.meshes)
        CheckTriangles("INode::CreateMesh", mesh.name, mesh.vertices, mesh.indices);
    Change change(StillThere(parent).SceneOrThrow().m_batch, PlannedAdding(strName));
    StillThere(parent).SceneOrThrow(); // a slot may have removed it
    Newcomers newcomers(*parent->m_pScene, change);
    Node& group = newcomers.Add(std::make_unique<Node>(eNodeTypeGroup, ++m_nLastId, strName), *parent);
    ModelMaterials materials;
    group.m_children = PrepareMeshes(collector.meshes, group, strSource, materials, nullptr, newcomers);
    ReserveMore(parent->m_children, 1);
    parent->m_children.push_back(&group);
    newcomers.Hold();
    TakeOver(materials, change);
    return &group;
}

INode* Scene::HangModel(Model&& model, Node& parent, const QString& strName, const QString& strSource,
                        ModelMaterials& materials)
{
    const Matrix upright = Upright(model.up);
    auto posed = std::make_unique<PosedModel>(std::move(model.scene));
    MeshCollector collector;
    posed->Pose(-1, 0.0f, collector, m_pStopwatch);

    Change change(m_batch, PlannedAdding(strName));
    parent.SceneOrThrow(); // a slot may have removed it
    Newcomers newcomers(*this, change);
    Node& group = newcomers.Add(std::make_unique<Node>(eNodeTypeGroup, ++m_nLastId, strName), parent);
    group.m_matrix = upright;
    group.m_children = PrepareMeshes(collector.meshes, group, strSource, materials, posed.get(), newcomers);
    posed->pAnchor = &group;
    ReserveMore(parent.m_children, 1);
    ReserveMore(m_models, 1);
    parent.m_children.push_back(&group);
    if (!posed->GetAnimations().empty()) {
        m_models.push_back(std::move(posed));
        try {
            FollowTreeWithModels(change);
        } catch (...) {
            m_models.pop_back();
            parent.m_children.pop_back();
            throw;
        }
        change.InScene(eSceneChangedAnimation);
    }
    newcomers.Hold();
    TakeOver(materials, change);
    return &group;
}

// ------------------------------------------------------------------ animation

void Scene::FollowTreeWithModels(Change& change)
{
    std::vector<INode*> anchors;
    for (const std::unique_ptr<PosedModel>& model : m_models)
        anchors.push_back(model->pAnchor);
    const std::vector<Node*> ordered = InTreeOrder(anchors, eEach);
    if (std::equal(ordered.begin(), ordered.end(), anchors.begin(), anchors.end())) return;

    std::vector<std::unique_ptr<PosedModel>> models;
    models.reserve(ordered.size());
    for (const Node* pAnchor : ordered)
        models.push_back(std::move(*std::find_if(
            m_models.begin(), m_models.end(), [&](const auto& model) { return model && model->pAnchor == pAnchor; })));
    m_models = std::move(models);
    change.InScene(eSceneChangedAnimation);
}

void Scene::ForgetModels(Change& change) noexcept
{
    const auto gone =
        std::remove_if(m_models.begin(), m_models.end(), [](const auto& model) { return !model->pAnchor->GetScene(); });
    if (gone == m_models.end()) return;
    m_models.erase(gone, m_models.end());
    const bool isPlaying =
        std::any_of(m_models.begin(), m_models.end(), [this](const auto& model) { return model.get() == m_pPlaying; });
    if (!isPlaying) {
        m_pPlaying = nullptr;
        m_nPlaying = -1;
        m_time = 0.0f;
    }
    change.InScene(eSceneChangedAnimation);
}

bool Scene::IsAnchor(const Node& node) const
{
    return std::any_of(m_models.begin(), m_models.end(), [&](const auto& model) { return model->pAnchor == &node; });
}

std::vector<sAnimationInfo> Scene::GetAnimations() const
{
    std::vector<sAnimationInfo> animations;
    for (const std::unique_ptr<PosedModel>& model : m_models)
        for (const SkinAnimation::Animation* pAnimation : model->GetAnimations())
            animations.push_back({pAnimation->name, model->pAnchor->GetName(), pAnimation->duration});
    return animations;
}

int Scene::GetCurrentAnimation() const
{
    std::size_t nBefore = 0;
    for (const std::unique_ptr<PosedModel>& model : m_models) {
        if (model.get() == m_pPlaying) return static_cast<int>(nBefore) + m_nPlaying;
        nBefore += model->GetAnimations().size();
    }
    return -1;
}

void Scene::SetAnimation(int nAnimation, float time)
{
    if (nAnimation == -1) {
        Play(nullptr, -1, 0.0f);
        return;
    }
    int nInModel = nAnimation;
    for (const std::unique_ptr<PosedModel>& model : m_models) {
        const int nCount = static_cast<int>(model->GetAnimations().size());
        if (nInModel >= 0 && nInModel < nCount) {
            Play(model.get(), nInModel, time);
            return;
        }
        nInModel -= nCount;
    }
    throw InvalidParameterException(QStringLiteral("IScene::SetAnimation"), QStringLiteral("nAnimation"),
                                    QStringLiteral("The scene has no animation %1").arg(nAnimation));
}

void Scene::Play(PosedModel* pModel, int nAnimation, float time)
{
    if (pModel == m_pPlaying && nAnimation == m_nPlaying && time == m_time && !m_bHalfPosed) return;
    const Timed timed(m_pStopwatch, eStageDocument);
    Change change(m_batch);
    const bool isThere =
        std::any_of(m_models.begin(), m_models.end(), [&](const auto& model) { return model.get() == pModel; });
    if (pModel && !isThere) return; // a slot has removed it
    m_bHalfPosed = true;
    if (m_pPlaying && m_pPlaying != pModel) PoseModel(*m_pPlaying, -1, 0.0f, change);
    m_pPlaying = pModel;
    m_nPlaying = nAnimation;
    m_time = time;
    if (pModel) PoseModel(*pModel, nAnimation, time, change);
    m_bHalfPosed = false;
    change.InScene(eSceneChangedAnimation);
}

void Scene::PoseModel(PosedModel& model, int nAnimation, float time, Change& change)
{
    const auto rewrite = [&](const PosedModel::Part& part, const std::vector<MeshVertex>& vertices) {
        const Timed timed(m_pStopwatch, eStageDocument);
        if (!part.pNode || !part.pNode->GetScene() || part.pMesh->HasVertices(vertices)) return;
        change.Changed(*part.pNode, eNodeChangedMesh);
        part.pNode->ReplaceVertices(*part.pMesh, vertices);
    };
    MeshRewriter rewriter(model.parts, rewrite);
    model.Pose(nAnimation, time, rewriter, m_pStopwatch);
}

} // namespace Host
