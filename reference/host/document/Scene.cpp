#include "reference/host/document/Scene.h"

#include "reference/host/Caught.h"
#include "reference/host/Directions.h"
#include "reference/host/document/Node.h"
#include "reference/host/document/PosedModel.h"
#include "reference/host/document/SceneMaterial.h"
#include "reference/host/document/Snapshots.h"
#include "reference/host/images/Image.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace Host {

namespace {

const QString kDefaultMaterial = QStringLiteral("Default");

} // namespace

Scene::Scene(QObject* pParent)
    : IScene(pParent)
    , m_batch(*this)
    , m_camera(std::make_unique<FreeCamera>())
    , m_snapshots(std::make_unique<SnapshotManager>(*this))
{
    auto root = std::make_unique<Node>(eNodeTypeGroup, ++m_nLastId, QString());
    m_pRoot = root.get();
    m_pRoot->m_pScene = this;
    m_nodes[m_nLastId] = std::move(root);
    auto material = std::make_unique<SceneMaterial>(kDefaultMaterial, this);
    m_materials.push_back(material.get());
    static_cast<void>(material.release());
}

Scene::~Scene()
{
    m_batch.Silence();
    m_settings.pBackgroundImage = nullptr; // which may be one of the scene's own
    for (IMaterial* pMaterial : m_materials)
        pMaterial->blockSignals(true); // they hear of each other's images
    for (IMaterial* pMaterial : m_materials)
        delete pMaterial;
}

INode* Scene::GetRoot() const
{
    return m_pRoot;
}

ISnapshotManager* Scene::GetSnapshotManager() const
{
    return m_snapshots.get();
}

void Scene::KeepUntilLater(std::unique_ptr<QObject> removed)
{
    m_batch.Keep(std::move(removed));
}

// ------------------------------------------------------------------- settings

void Scene::Announce(eSceneChangedFlags what)
{
    eSceneChangedFlags told = what;
    if (!m_bModified) {
        m_bModified = true;
        told = told | eSceneChangedDocument;
    }
    if (told != eSceneChangedFlags{}) Tell("sceneChanged", [&] { Q_EMIT sceneChanged(told); });
}

template <typename T>
void Scene::Assign(T& field, const T& value, eSceneChangedFlags what)
{
    if (field == value) return;
    field = value;
    Announce(what);
}

void Scene::SetGroundPlaneEnabled(bool bEnabled)
{
    Assign(m_settings.bGround, bEnabled, eSceneChangedGround);
}

void Scene::SetGroundShadowEnabled(bool bEnabled)
{
    Assign(m_settings.bGroundShadow, bEnabled, eSceneChangedGround);
}

void Scene::SetBackgroundMode(eBackgroundMode mode)
{
    Assign(m_settings.backgroundMode, mode, eSceneChangedBackground);
}

void Scene::SetBackgroundColor(const ColorF& color)
{
    Assign(m_settings.backgroundColor, color, eSceneChangedBackground);
}

void Scene::SetBackgroundImage(IImage* pImage)
{
    if (pImage) connect(pImage, &QObject::destroyed, this, &Scene::OnImageDestroyed, Qt::UniqueConnection);
    Assign(m_settings.pBackgroundImage, pImage, eSceneChangedBackground);
}

void Scene::OnImageDestroyed(QObject* pObject)
{
    if (static_cast<QObject*>(m_settings.pBackgroundImage) == pObject) SetBackgroundImage(nullptr);
}

void Scene::SetAmbientLight(const ColorF& color)
{
    Assign(m_settings.ambientLight, color, eSceneChangedLighting);
}

void Scene::SetSunDirection(const TVec3<float>& direction)
{
    if (!std::isfinite(direction.x) || !std::isfinite(direction.y) || !std::isfinite(direction.z)) return;
    // What is as long as a float can tell stays as it is, so that it survives being read and set.
    const bool isUnit = std::fabs(LengthOf(Widened(direction)) - 1.0) <= 1e-7;
    Assign(m_settings.sunDirection, isUnit ? direction : UnitOr(direction, {0.0f, 0.0f, 0.0f}), eSceneChangedLighting);
}

void Scene::SetSunLight(const ColorF& color)
{
    Assign(m_settings.sunLight, color, eSceneChangedLighting);
}

void Scene::SetMillimetersPerUnit(float millimeters)
{
    if (millimeters > 0.0f && std::isfinite(millimeters))
        Assign(m_settings.millimetersPerUnit, millimeters, eSceneChangedOutput);
}

void Scene::SetRenderSize(const QSize& size)
{
    if (!size.isEmpty()) Assign(m_settings.renderSize, size, eSceneChangedOutput);
}

void Scene::SetModified(bool bModified)
{
    if (bModified == m_bModified) return;
    m_bModified = bModified;
    Tell("sceneChanged", [&] { Q_EMIT sceneChanged(eSceneChangedDocument); });
}

void Scene::SetFileName(const QString& strFileName)
{
    if (strFileName == m_strFileName) return;
    m_strFileName = strFileName;
    Tell("sceneChanged", [&] { Q_EMIT sceneChanged(eSceneChangedDocument); });
}

void Scene::Clear()
{
    const QPointer<Scene> self = this; // slots may end it
    ClearTree();
    while (self && !m_snapshots->GetSnapshots().empty())
        m_snapshots->Remove(m_snapshots->GetSnapshots().front());

    const Settings fresh;
    const std::function<void()> steps[] = {[&] { SetGroundPlaneEnabled(fresh.bGround); },
                                           [&] { SetGroundShadowEnabled(fresh.bGroundShadow); },
                                           [&] { SetBackgroundMode(fresh.backgroundMode); },
                                           [&] { SetBackgroundColor(fresh.backgroundColor); },
                                           [&] { SetBackgroundImage(fresh.pBackgroundImage); },
                                           [&] { SetAmbientLight(fresh.ambientLight); },
                                           [&] { SetSunDirection(fresh.sunDirection); },
                                           [&] { SetSunLight(fresh.sunLight); },
                                           [&] { SetMillimetersPerUnit(fresh.millimetersPerUnit); },
                                           [&] { SetRenderSize(fresh.renderSize); },
                                           [&] { m_camera->Restart(); },
                                           [&] { setProperty("object-creator-next-index", QVariant()); },
                                           [&] { SetFileName(QString()); },
                                           [&] { SetModified(false); }};
    for (const std::function<void()>& step : steps)
        if (self) step();
}

/// And what it wears.
void Scene::ClearTree()
{
    sSceneModifications planned;
    planned.strTitle = QStringLiteral("Clear");
    const Bracket bracket(m_batch, planned);
    RemoveNodes(m_pRoot->GetChildren());
    if (bracket.IsAlive()) m_pRoot->SetName(QString());
    if (bracket.IsAlive()) m_pRoot->SetVisible(true);
    if (!bracket.IsAlive()) return;
    for (IMaterial* pMaterial : std::vector<IMaterial*>(m_materials))
        if (bracket.IsAlive()) RemoveMaterial(pMaterial);
    if (bracket.IsAlive()) GetDefaultMaterial()->Reset();
    if (bracket.IsAlive()) GetDefaultMaterial()->SetName(kDefaultMaterial);
    if (!bracket.IsAlive()) return;
    m_batch.MakeRoom(m_images.size());
    for (std::unique_ptr<Image>& image : m_images)
        m_batch.Keep(std::move(image));
    m_images.clear();
}

// ------------------------------------------------------------------ materials

IMaterial* Scene::FindMaterial(const QString& strName) const
{
    const auto found = std::find_if(m_materials.begin(), m_materials.end(),
                                    [&](const IMaterial* pMaterial) { return pMaterial->GetName() == strName; });
    return found == m_materials.end() ? nullptr : *found;
}

IMaterial* Scene::AddMaterial(std::unique_ptr<SceneMaterial> material, Change& change)
{
    material->m_pScene = this;
    m_materials.push_back(material.get());
    change.Materials();
    change.InScene(eSceneChangedMaterials);
    return material.release();
}

IMaterial* Scene::CreateMaterial(const QString& strName)
{
    sSceneModifications planned;
    planned.strTitle = QStringLiteral("Add material '%1'").arg(strName);
    planned.materialsChanged = true;
    Change change(m_batch, planned);
    return AddMaterial(std::make_unique<SceneMaterial>(strName), change);
}

IMaterial* Scene::NullForDefault(IMaterial* pMaterial) const
{
    return pMaterial == GetDefaultMaterial() ? nullptr : pMaterial;
}

/// The mesh nodes at and under `nodes` that don't wear yet what choose(given)
/// answers for what each mesh was given, and what it answers; null is the
/// default material.
template <typename F>
Scene::Dresses Scene::PlanDresses(const std::vector<INode*>& nodes, const F& choose) const
{
    Dresses dresses;
    for (Node* pNode : InTreeOrder(nodes, eWithBelow)) {
        auto* const pMeshNode = qobject_cast<MeshNode*>(pNode);
        if (!pMeshNode) continue;
        const std::vector<IMaterial*> given = pMeshNode->GivenMaterials();
        std::vector<IMaterial*> chosen(given.size());
        std::transform(given.begin(), given.end(), chosen.begin(), choose);
        if (chosen != given) dresses.emplace_back(pMeshNode, std::move(chosen));
    }
    return dresses;
}

void Scene::NoteDresses(const Dresses& dresses, Change& change)
{
    for (const auto& dress : dresses)
        change.Changed(*dress.first, eNodeChangedMaterial);
}

void Scene::Dress(const Dresses& dresses) noexcept
{
    for (const auto& [pMeshNode, chosen] : dresses)
        pMeshNode->GiveMaterials(chosen);
}

void Scene::AssignMaterial(const std::vector<INode*>& nodes, IMaterial* pMaterial)
{
    if (!IsOwnOrNull(pMaterial)) return;
    IMaterial* const pGiven = NullForDefault(pMaterial);
    const auto choose = [&](IMaterial*) { return IsOwnOrNull(pGiven) ? pGiven : nullptr; };
    if (PlanDresses(nodes, choose).empty()) return;
    sSceneModifications planned;
    planned.strTitle = QStringLiteral("Assign a material");
    Change change(m_batch, planned);
    Notes notes(change);
    const Dresses dresses = PlanDresses(nodes, choose);
    NoteDresses(dresses, change);
    Dress(dresses);
    notes.Hold();
}

void Scene::RemoveMaterial(IMaterial* pMaterial)
{
    if (!pMaterial || pMaterial->GetScene() != this || pMaterial == GetDefaultMaterial()) return;
    sSceneModifications planned;
    planned.strTitle = QStringLiteral("Remove material '%1'").arg(pMaterial->GetName());
    planned.materialsChanged = true;
    Change change(m_batch, planned);
    if (pMaterial->GetScene() != this) return; // a slot was faster
    Notes notes(change);
    const Dresses dresses =
        PlanDresses({m_pRoot}, [&](IMaterial* pGiven) { return pGiven == pMaterial ? nullptr : pGiven; });
    NoteDresses(dresses, change);
    m_batch.MakeRoom(1);
    // All of it before anybody hears of it, and could put the material on again.
    m_materials.erase(std::find(m_materials.begin(), m_materials.end(), pMaterial));
    const auto loans = static_cast<SceneMaterial*>(pMaterial)->Leave(); // end when all is done
    m_batch.Keep(std::unique_ptr<QObject>(pMaterial));
    Dress(dresses);
    notes.Hold();
    change.Materials();
    change.InScene(eSceneChangedMaterials);
}

std::vector<INode*> Scene::GetNodesWithMaterial(const IMaterial* pMaterial) const
{
    std::vector<INode*> nodes;
    for (Node* pNode : AllNodes()) {
        const auto* const pMeshNode = qobject_cast<const MeshNode*>(pNode);
        for (std::size_t i = 0; pMeshNode && i < pMeshNode->GetMeshes().size(); ++i) {
            if (pMeshNode->GetMaterial(i) != pMaterial) continue;
            nodes.push_back(pNode);
            break;
        }
    }
    return nodes;
}

} // namespace Host
