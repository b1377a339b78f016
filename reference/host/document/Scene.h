#pragma once

#include "lumenta/interfaces/IGenerator.h"
#include "lumenta/interfaces/IMaterial.h"
#include "lumenta/interfaces/IScene.h"
#include "reference/host/document/Batch.h"
#include "reference/host/document/FreeCamera.h"
#include "reference/host/Model.h"

#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>

namespace Host {

class Image;
class SceneMaterial;
class Mesh;
class MeshNode;
class Node;
class PosedModel;
class SnapshotManager;
class Stopwatch;
struct PosedMesh;
struct SceneState;

/// The document of the reference host, in memory.
///
/// Signals of an operation go out when all of it has been done, so slots see
/// the scene as it is afterwards. They may change it in turn: what they remove
/// stays alive until the operation that called them has ended, and what an
/// operation still had to do with it is passed over.
///
/// What slots throw goes no further than a warning (see Tell()). A slot may even
/// delete the scene: the operation that told it then ends, with a LogicException
/// where it had not begun. Nodes and materials end through the scene alone.
///
/// Where there is no memory, operations throw std::bad_alloc, and the scene is as
/// it was; what was announced is told of as ended, and the numbers of nodes may
/// skip some. What is made up of several operations (Clear(), restoring a snapshot,
/// an animation's next pose) may have done some of them, and does the rest when it
/// is asked for once more.
///
/// Every change counts as something to save, but for those of the selection,
/// the camera and the file name. The scene tells it by eSceneChangedDocument, together with
/// the change.
///
/// Nodes, materials and snapshots that are removed end when control returns to
/// the event loop, or with the scene.
class Scene final : public IScene {
    Q_OBJECT

public:
    /// Makes a model of what INode::CreateMesh() calls its source.
    using ModelReader = std::function<Model(const QString& strSource)>;

    explicit Scene(QObject* pParent = nullptr);
    ~Scene() override;

    // What a host needs beyond the contract.

    void SetModelReader(ModelReader reader) { m_reader = std::move(reader); }

    /// Makes what generates the meshes of a source; null for one that is a model's.
    using MeshMaker = std::function<std::unique_ptr<IGenerator>(const QString& strSource)>;
    void SetMeshMaker(MeshMaker maker) { m_maker = std::move(maker); }

    /// Tells where the time of posing goes.
    /// \param pStopwatch must outlive the scene; or null
    void SetStopwatch(Stopwatch* pStopwatch) { m_pStopwatch = pStopwatch; }

    /// Hangs a model under a node, as a group that turns it upright (see
    /// Upright()) and bears the name of its file, or else of its top node. In it
    /// is one mesh node for each run of meshes of one name, in the order in which
    /// they are posed. Materials of the same name and parameters become one, once
    /// per call; their texture's name goes into the diffuse slot, and so does the
    /// image of that name. Materials and images stay when the model is removed,
    /// until Clear().
    ///
    /// The model's animations become the scene's, as long as the group is there.
    /// Copies of its meshes keep the pose of the moment and never move; removing
    /// or dissolving the group leaves meshes outside of it as they are posed.
    /// \param images by the name that "texture" uses; what is not among them is
    ///               looked for in the model's own
    /// \throws InvalidParameterException the model is empty, or `pParent` is none
    ///         of this scene's nodes
    INode* AddModel(Model&& model, INode* pParent, const QMap<QString, QImage>& images = {});

    /// A mesh node that holds one mesh.
    /// \throws InvalidParameterException `pParent` is none of this scene's nodes,
    ///         or `indices` are no triangles of `vertices`
    INode* AddMesh(INode* pParent, const QString& strName, std::vector<MeshVertex> vertices,
                   std::vector<unsigned int> indices);

    // The contract.

    QString GetFileName() const override { return m_strFileName; }
    INode* GetRoot() const override;
    ISnapshotManager* GetSnapshotManager() const override;
    IFreeCamera* GetCamera() const override { return m_camera.get(); }

    INode* FindNode(const QString& strName) const override;
    INode* GetNodeById(int nId) const override;
    void MoveNodes(const std::vector<INode*>& nodes, INode* pParent, int nPosition) override;
    void RemoveNodes(const std::vector<INode*>& nodes) override;
    std::vector<INode*> DuplicateNodes(const std::vector<INode*>& nodes) override;
    INode* GroupNodes(const std::vector<INode*>& nodes, const QString& strName) override;
    void UngroupNodes(const std::vector<INode*>& nodes) override;

    void BeginUpdate(const sSceneModifications& planned) override { m_batch.Begin(planned); }
    void EndUpdate() override { m_batch.End(); }
    bool IsUpdating() const override { return m_batch.IsOpen(); }

    bool IsGroundPlaneEnabled() const override { return m_settings.bGround; }
    void SetGroundPlaneEnabled(bool bEnabled) override;
    bool IsGroundShadowEnabled() const override { return m_settings.bGroundShadow; }
    void SetGroundShadowEnabled(bool bEnabled) override;

    eBackgroundMode GetBackgroundMode() const override { return m_settings.backgroundMode; }
    void SetBackgroundMode(eBackgroundMode mode) override;
    ColorF GetBackgroundColor() const override { return m_settings.backgroundColor; }
    void SetBackgroundColor(const ColorF& color) override;
    IImage* GetBackgroundImage() const override { return m_settings.pBackgroundImage; }
    void SetBackgroundImage(IImage* pImage) override;

    ColorF GetAmbientLight() const override { return m_settings.ambientLight; }
    void SetAmbientLight(const ColorF& color) override;
    std::vector<INode*> GetLights() const override;
    TVec3<float> GetSunDirection() const override { return m_settings.sunDirection; }
    void SetSunDirection(const TVec3<float>& direction) override;
    ColorF GetSunLight() const override { return m_settings.sunLight; }
    void SetSunLight(const ColorF& color) override;

    const std::vector<INode*>& GetSelection() const override;
    void SetSelection(const std::vector<INode*>& nodes) override;
    bool IsSelected(const INode* pNode) const override;
    void SetSelected(INode* pNode, bool bSelected) override;

    IMeshNodeBuilder* CreateMeshBuilder(INode* pParent) override;
    /// Nodes under a singular parent stay as they are.
    void TransformNodes(const std::vector<INode*>& nodes, const Matrix& world) override;
    /// Hidden nodes count; what has no box is passed over.
    void PlaceOnGround(const std::vector<INode*>& nodes) override;
    void AssignMaterial(const std::vector<INode*>& nodes, IMaterial* pMaterial) override;

    const std::vector<IMaterial*>& GetMaterials() const override { return m_materials; }
    IMaterial* FindMaterial(const QString& strName) const override;
    IMaterial* CreateMaterial(const QString& strName) override;
    void RemoveMaterial(IMaterial* pMaterial) override;
    IMaterial* GetDefaultMaterial() const override { return m_materials.front(); }
    std::vector<INode*> GetNodesWithMaterial(const IMaterial* pMaterial) const override;

    std::vector<sAnimationInfo> GetAnimations() const override;
    int GetCurrentAnimation() const override;
    float GetAnimationTime() const override { return m_time; }
    void SetAnimation(int nAnimation, float time) override;

    bool IsModified() const override { return m_bModified; }
    void SetModified(bool bModified) override;
    void SetFileName(const QString& strFileName) override;
    /// Numbers of nodes go on, the numbering of new meshes starts again.
    void Clear() override;

    float GetMillimetersPerUnit() const override { return m_settings.millimetersPerUnit; }
    void SetMillimetersPerUnit(float millimeters) override;
    QSize GetRenderSize() const override { return m_settings.renderSize; }
    void SetRenderSize(const QSize& size) override;

private:
    friend class Change;
    friend class SceneMaterial;
    friend class MeshNode;
    friend class Node;
    friend class SnapshotManager;

    /// What a new scene has beside its tree.
    struct Settings {
        bool bGround = true;
        bool bGroundShadow = true;
        eBackgroundMode backgroundMode = eBackgroundStudio;
        ColorF backgroundColor{1.0f, 1.0f, 1.0f, 1.0f};
        IImage* pBackgroundImage = nullptr;
        ColorF ambientLight{1.0f, 1.0f, 1.0f, 1.0f};
        TVec3<float> sunDirection{0.0f, 0.0f, 0.0f};
        ColorF sunLight{1.0f, 1.0f, 1.0f, 1.0f};
        float millimetersPerUnit = 1000.0f;
        QSize renderSize{1200, 900};
    };

    /// How far a listed node stands for those under it.
    enum Listed {
        eEach,     ///< Every listed node.
        eTopsOnly, ///< Without the root, and without nodes under another listed one.
        eWithBelow ///< Every listed node and all that is under one.
    };

    // Of the tree.
    std::vector<Node*> InTreeOrder(const std::vector<INode*>& nodes, Listed listed) const;
    std::vector<Node*> AllNodes() const;
    Node& Own(INode* pNode, const char* method) const;
    class Newcomers;
    class Arrangement;
    INode* AddGroup(const QString& strName, Node* pParent);
    INode* AddLight(const QString& strName, Node* pParent);
    INode* AddNode(std::unique_ptr<Node> node, Node& parent);
    Node& CopyBranch(Node& top, Newcomers& newcomers);
    static std::vector<INode*> ChildrenAfterMove(const Node& parent, const std::vector<Node*>& moving, int nPosition);
    static void Dissolve(const std::vector<Node*>& groups, Arrangement& arrangement);
    void PrepareToForget(const std::vector<INode*>& nodes, Change& change);
    void Forget(const std::vector<INode*>& nodes, Change& change) noexcept;
    /// After nodes moved: brings selection and models into their order.
    void FollowTree(Change& change);
    void FollowTreeWithModels(Change& change);
    void ForgetModels(Change& change) noexcept;
    /// \param motion of a node within the world; nothing for one that stays
    void MoveInWorld(const std::vector<INode*>& nodes, const QString& strTitle,
                     const std::function<std::optional<Matrix>(const Node&)>& motion);

    // Of models.
    class MeshBuilder;
    class ModelMaterials;
    INode* ReadModel(const QString& strName, const QString& strSource, Node* pParent);
    INode* HangMeshes(IGenerator& generator, const QString& strName, const QString& strSource,
                      const QPointer<Node>& parent);
    INode* HangModel(Model&& model, Node& parent, const QString& strName, const QString& strSource,
                     ModelMaterials& materials);
    std::vector<INode*> PrepareMeshes(std::vector<PosedMesh>& meshes, Node& parent, const QString& strSource,
                                      ModelMaterials& materials, PosedModel* pModel, Newcomers& newcomers);
    void TakeOver(ModelMaterials& materials, Change& change) noexcept;
    void PoseModel(PosedModel& model, int nAnimation, float time, Change& change);
    bool IsAnchor(const Node& node) const;
    void Play(PosedModel* pModel, int nAnimation, float time);
    IMaterial* AddMaterial(std::unique_ptr<SceneMaterial> material, Change& change);

    void ClearTree();

    // Of materials.
    bool IsOwnOrNull(const IMaterial* pMaterial) const { return !pMaterial || pMaterial->GetScene() == this; }
    IMaterial* NullForDefault(IMaterial* pMaterial) const;
    using Dresses = std::vector<std::pair<MeshNode*, std::vector<IMaterial*>>>;
    template <typename F>
    Dresses PlanDresses(const std::vector<INode*>& nodes, const F& choose) const;
    static void NoteDresses(const Dresses& dresses, Change& change);
    static void Dress(const Dresses& dresses) noexcept;

    // Of snapshots.
    SceneState KeepState() const;
    void RestoreState(const SceneState& state, const QString& strName);

    void PrepareToKeep() { m_batch.MakeRoom(1); }
    void KeepUntilLater(std::unique_ptr<QObject> removed);
    /// Tells of a change that may be the first one to save.
    void Announce(eSceneChangedFlags what);
    template <typename T>
    void Assign(T& field, const T& value, eSceneChangedFlags what);
    void OnImageDestroyed(QObject* pObject);

    Batch m_batch;
    ModelReader m_reader;
    MeshMaker m_maker;
    Stopwatch* m_pStopwatch = nullptr;
    QString m_strFileName;
    Settings m_settings;
    bool m_bModified = false;

    int m_nLastId = 0;
    std::unordered_map<int, std::unique_ptr<Node>> m_nodes;
    Node* m_pRoot = nullptr;
    mutable std::vector<INode*> m_selection; ///< In any order until somebody asks.
    mutable bool m_bSelectionSorted = true;
    std::vector<IMaterial*> m_materials;          ///< Owned.
    std::vector<std::unique_ptr<Image>> m_images; ///< That models brought.

    std::vector<std::unique_ptr<PosedModel>> m_models; ///< In the order of their groups.
    PosedModel* m_pPlaying = nullptr;
    int m_nPlaying = -1;       ///< Among that model's animations.
    bool m_bHalfPosed = false; ///< Some of its meshes may be as they were before.
    float m_time = 0.0f;

    std::unique_ptr<FreeCamera> m_camera;
    std::unique_ptr<SnapshotManager> m_snapshots;
};

} // namespace Host
