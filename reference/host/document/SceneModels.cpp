// What a scene does with models: their meshes, materials and animations.

#include "lumenta/foundation/Exceptions.h"
#include "reference/host/document/Image.h"
#include "reference/host/document/Mesh.h"
#include "reference/host/document/Node.h"
#include "reference/host/document/Placement.h"
#include "reference/host/document/PosedModel.h"
#include "reference/host/document/Scene.h"
#include "reference/host/document/SceneMaterial.h"
#include "reference/host/document/Snapshots.h"
#include "reference/host/Picture.h"

#include <QColor>
#include <QFileInfo>

#include <algorithm>

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

/// The materials that a model brings, each once, and their images.
class ModelMaterials {
public:
    ModelMaterials(const Model& model, const QMap<QString, QImage>& files)
        : m_model(model)
        , m_files(files)
    {
    }

    /// \return the material's index in `made`
    std::size_t IndexOf(const PosedMesh& mesh)
    {
        const auto isSame = [&](const Made& known) {
            return known.material->GetName() == mesh.materialName && known.source == mesh.materialParameters;
        };
        const auto found = std::find_if(made.begin(), made.end(), isSame);
        if (found != made.end()) return static_cast<std::size_t>(found - made.begin());
        auto material = std::make_unique<SceneMaterial>(mesh.materialName);
        material->SetParameters(ParametersFrom(mesh.materialParameters));
        material->SetImage(eMaterialSlotDiffuse, ImageOf(material->GetImageFile(eMaterialSlotDiffuse)));
        made.push_back({mesh.materialParameters, std::move(material)});
        return made.size() - 1;
    }

    struct Made {
        QMap<QString, QVariant> source;
        std::unique_ptr<SceneMaterial> material;
    };
    std::vector<Made> made;
    std::vector<std::unique_ptr<Image>> images;

private:
    Image* ImageOf(const QString& strName)
    {
        const auto known = m_known.constFind(strName);
        if (known != m_known.constEnd()) return *known;
        const bool isFile = m_files.contains(strName);
        const QImage pixels = isFile ? m_files.value(strName) : m_model.embeddedImages.value(strName);
        if (pixels.isNull()) return nullptr;
        images.push_back(std::make_unique<Image>(pixels, isFile ? strName : QString()));
        return m_known[strName] = images.back().get();
    }

    const Model& m_model;
    const QMap<QString, QImage>& m_files;
    QMap<QString, Image*> m_known;
};

} // namespace

// -------------------------------------------------------------------- adding

INode* Scene::AddMesh(INode* pParent, const QString& strName, std::vector<MeshVertex> vertices,
                      std::vector<unsigned int> indices)
{
    Node& parent = Own(pParent, "Scene::AddMesh");
    const bool isSound =
        indices.size() % 3 == 0
        && std::all_of(indices.begin(), indices.end(), [&](unsigned int index) { return index < vertices.size(); });
    if (!isSound)
        throw InvalidParameterException(QStringLiteral("Scene::AddMesh"), QStringLiteral("indices"),
                                        QStringLiteral("They are no triangles of the mesh '%1'").arg(strName));
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
    return HangModel(std::move(model), parent, name, source, images);
}

INode* Scene::ReadModel(const QString& strName, const QString& strSource, Node* pParent)
{
    if (!m_reader)
        throw LoadingException(QStringLiteral("'%1' can't be loaded: nothing here reads models").arg(strSource));
    Model model = m_reader(strSource);
    if (!model.scene) throw LoadingException(QStringLiteral("'%1' can't be loaded: it holds no model").arg(strSource));
    return HangModel(std::move(model), *pParent, strName, strSource, {});
}

INode* Scene::HangModel(Model&& model, Node& parent, const QString& strName, const QString& strSource,
                        const QMap<QString, QImage>& images)
{
    const Matrix upright = Upright(model.up);
    auto posed = std::make_unique<PosedModel>(std::move(model.scene));
    MeshCollector collector;
    posed->Pose(-1, 0.0f, collector);
    ModelMaterials materials(model, images);

    sSceneModifications planned;
    planned.strTitle = QStringLiteral("Add '%1'").arg(strName);
    Change change(m_batch, planned);
    parent.SceneOrThrow(); // a slot may have removed it
    posed->pAnchor = &Append(std::make_unique<Node>(eNodeTypeGroup, ++m_nLastId, strName), parent, change);
    posed->pAnchor->m_matrix = upright;

    MeshNode* pNode = nullptr;
    for (PosedMesh& mesh : collector.meshes) {
        if (!pNode || pNode->GetName() != mesh.name)
            pNode = static_cast<MeshNode*>(
                &Append(std::make_unique<MeshNode>(++m_nLastId, mesh.name, strSource), *posed->pAnchor, change));
        const bool isBare = mesh.materialName.isEmpty() && mesh.materialParameters.isEmpty();
        SceneMaterial* const pMaterial = isBare ? nullptr : materials.made[materials.IndexOf(mesh)].material.get();
        auto own = std::make_unique<Mesh>(mesh.name, std::move(mesh.vertices), std::move(mesh.indices));
        posed->parts.push_back({pNode, own.get()});
        pNode->AddMesh(std::move(own), pMaterial);
    }
    for (ModelMaterials::Made& made : materials.made)
        AddMaterial(std::move(made.material), change);
    std::move(materials.images.begin(), materials.images.end(), std::back_inserter(m_images));

    Node* const pAnchor = posed->pAnchor;
    if (!posed->GetAnimations().empty()) {
        m_models.push_back(std::move(posed));
        FollowTreeWithModels(change);
        change.InScene(eSceneChangedAnimation);
    }
    return pAnchor;
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
    for (const Node* pAnchor : ordered)
        models.push_back(std::move(*std::find_if(
            m_models.begin(), m_models.end(), [&](const auto& model) { return model && model->pAnchor == pAnchor; })));
    m_models = std::move(models);
    const bool isPlaying =
        std::any_of(m_models.begin(), m_models.end(), [this](const auto& model) { return model.get() == m_pPlaying; });
    if (!isPlaying) {
        m_pPlaying = nullptr;
        m_nPlaying = -1;
        m_time = 0.0f;
    }
    change.InScene(eSceneChangedAnimation);
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
    if (pModel == m_pPlaying && nAnimation == m_nPlaying && time == m_time) return;
    Change change(m_batch);
    const bool isThere =
        std::any_of(m_models.begin(), m_models.end(), [&](const auto& model) { return model.get() == pModel; });
    if (pModel && !isThere) return; // a slot has removed it
    if (m_pPlaying && m_pPlaying != pModel) PoseModel(*m_pPlaying, -1, 0.0f, change);
    m_pPlaying = pModel;
    m_nPlaying = nAnimation;
    m_time = time;
    if (pModel) PoseModel(*pModel, nAnimation, time, change);
    change.InScene(eSceneChangedAnimation);
}

void Scene::PoseModel(PosedModel& model, int nAnimation, float time, Change& change)
{
    const auto rewrite = [&change](const PosedModel::Part& part, const std::vector<MeshVertex>& vertices) {
        if (part.pNode && part.pNode->GetScene() && part.pNode->ReplaceVertices(*part.pMesh, vertices))
            change.Changed(*part.pNode, eNodeChangedMesh);
    };
    MeshRewriter rewriter(model.parts, rewrite);
    model.Pose(nAnimation, time, rewriter);
}

} // namespace Host
