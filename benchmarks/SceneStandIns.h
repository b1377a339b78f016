#pragma once

#include "benchmarks/StandIn.h"
#include "lumenta/foundation/Matrix.h"
#include "lumenta/interfaces/IFreeCamera.h"
#include "lumenta/interfaces/ILightNode.h"
#include "lumenta/interfaces/IMesh.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/interfaces/INode.h"
#include "lumenta/interfaces/IScene.h"

#include <QStringList>

#include <cstring>
#include <memory>

/// The least that the library's walks need of a scene, open to be made
/// inconsistent: parents that don't list their children, nodes that hang twice,
/// boxes that hold nothing. Whoever asks for more ends the program.
namespace StandIn {

struct Mesh final : IMesh {
    TBBox<float> box;
    std::vector<MeshVertex> vertices;
    std::vector<unsigned int> indices;
    const IMeshNode* owner = nullptr;

    /// Triangles over `positions`, three by three, in their box.
    explicit Mesh(const std::vector<TVec3<float>>& positions = {})
    {
        for (const TVec3<float>& position : positions) {
            indices.push_back(static_cast<unsigned int>(vertices.size()));
            vertices.push_back({position, {}, {}, {}, {}, 1.0f});
            box.Extend(position);
        }
    }

    const TBBox<float>& GetBBox() const override { return box; }
    const std::vector<MeshVertex>& GetVertices() const override { return vertices; }
    const std::vector<unsigned int>& GetIndices() const override { return indices; }
    const IMeshNode* GetOwner() const override { return owner; }
    QString GetName() const override { No(); }
};

struct Node final : INode, IMeshNode, ILightNode {
    int type;
    bool casts = true; ///< Whether it answers for the interfaces that go with its type.
    bool visible = true, excluded = false;
    float radius = 1.0f;
    Matrix matrix;
    INode* parent;
    std::vector<INode*> children;
    std::vector<IMesh*> meshes;
    TBBox<float> localBox, worldBox;
    QStringList created;
    QString refusal; ///< CreateMesh() throws it unless it is empty.

    static inline long childrenAsked = 0;

    explicit Node(int nodeType = eNodeTypeGroup, Node* under = nullptr, const Matrix& local = Matrix())
        : type(nodeType), matrix(local), parent(under)
    {
        if (under)
            under->children.push_back(this);
    }

    void Add(Mesh& mesh)
    {
        mesh.owner = this;
        meshes.push_back(&mesh);
        localBox.Extend(mesh.box);
    }

    void* qt_metacast(const char* name) override
    {
        if (casts && std::strcmp(name, "com.quillwright.lumenta.IMeshNode") == 0)
            return static_cast<IMeshNode*>(this);
        if (casts && std::strcmp(name, "com.quillwright.lumenta.ILightNode") == 0)
            return static_cast<ILightNode*>(this);
        return INode::qt_metacast(name);
    }

    int GetType() const override { return type; }
    const std::vector<INode*>& GetChildren() const override { return ++childrenAsked, children; }
    const Matrix& GetMatrix() const override { return matrix; }
    INode* GetParent() const override { return parent; }
    bool IsVisible() const override { return visible; }
    INode* CreateMesh(const QString& name, const QString& source) override
    {
        return refusal.isEmpty() ? (created << "mesh [" + name + "] of [" + source + ']', nullptr) : throw refusal;
    }
    INode* CreateGroup(const QString& name) override { return created << QStringLiteral("group ") + name, nullptr; }
    INode* CreateLight(const QString& name) override { return created << QStringLiteral("light ") + name, nullptr; }

    const TBBox<float>& GetBBox() const override { return localBox; }
    void FillBBox(TBBox<float>& box) const override { box.Extend(worldBox); }
    const std::vector<IMesh*>& GetMeshes() const override { return meshes; }
    bool IsExcludedFromTracing() const override { return excluded; }

    float GetRadius() const override { return radius; }
    // clang-format off: nothing to be read here
    IMaterial* GetMaterial(std::size_t) const override { No(); } void SetExcludedFromTracing(bool) override { No(); }
    void SetMaterial(std::size_t, IMaterial*) override { No(); } void SetMatrix(const Matrix&) override { No(); }
    void SetName(const QString&) override { No(); } void SetColor(const ColorF&) override { No(); }
    float GetIntensity() const override { No(); } void SetCastsShadows(bool) override { No(); }
    QString GetSource() const override { No(); } bool CastsShadows() const override { No(); }
    IScene* GetScene() const override { No(); } void SetIntensity(float) override { No(); }
    QString GetName() const override { No(); } ColorF GetColor() const override { No(); }
    void SetVisible(bool) override { No(); } void SetRadius(float) override { No(); }
    int GetId() const override { No(); }
    // clang-format on
};

/// Stands in the origin and looks along x, until it is placed.
struct Camera final : IFreeCamera {
    sCameraState state;
    Matrix matrix;

    // clang-format off
    const TVec3<float>& GetTarget() const override { return state.target; }
    float GetDistance() const override { return state.distance; }
    float GetHeading() const override { return state.heading; }
    float GetPitch() const override { return state.pitch; } const Matrix& GetMatrix() const override { return matrix; }
    float GetFieldOfView() const override { return state.fieldOfView; }
    float GetFrameAspect() const override { return state.frameAspect; }
    void LookAt(const TVec3<float>&, const TVec3<float>&) override { No(); } void Orbit(float, float) override { No(); }
    void SetTarget(const TVec3<float>&) override { No(); } void FrameBox(const TBBox<float>&) override { No(); }
    void SetState(const sCameraState&) override { No(); } sCameraState GetState() const override { No(); }
    void SetAngles(float, float) override { No(); } void Zoom(float) override { No(); } void Reset() override { No(); }
    void SetFieldOfView(float) override { No(); } void SetFrameAspect(float) override { No(); }
    void LookFrom(eCameraView) override { No(); } void SetDistance(float) override { No(); }
    void Pan(float, float) override { No(); } bool IsLocked() const override { No(); } void SetHome() override { No(); }
    void SetLocked(bool) override { No(); }
    // clang-format on
};

struct Scene : IScene {
    using Nodes = std::vector<INode*>;
    using Materials = std::vector<IMaterial*>;
    mutable Camera camera;
    mutable Node root;
    bool hasGround = false;

    INode* GetRoot() const override { return &root; }
    IFreeCamera* GetCamera() const override { return &camera; }
    bool IsGroundPlaneEnabled() const override { return hasGround; }
    // clang-format off: nothing to be read here
    Nodes GetNodesWithMaterial(const IMaterial*) const override { No(); } QString GetFileName() const override { No(); }
    std::vector<sAnimationInfo> GetAnimations() const override { No(); } QSize GetRenderSize() const override { No(); }
    void TransformNodes(const Nodes&, const Matrix&) override { No(); } INode* GetNodeById(int) const override { No(); }
    INode* GroupNodes(const Nodes&, const QString&) override { No(); } ColorF GetAmbientLight() const override { No(); }
    void AssignMaterial(const Nodes&, IMaterial*) override { No(); } void PlaceOnGround(const Nodes&) override { No(); }
    IMaterial* FindMaterial(const QString&) const override { No(); } void SetGroundPlaneEnabled(bool) override { No(); }
    ISnapshotManager* GetSnapshotManager() const override { No(); } const Nodes& GetSelection() const override { No(); }
    void BeginUpdate(const sSceneModifications&) override { No(); } void SetGroundShadowEnabled(bool) override { No(); }
    void MoveNodes(const Nodes&, INode*, int) override { No(); } TVec3<float> GetSunDirection() const override { No(); }
    eBackgroundMode GetBackgroundMode() const override { No(); } void SetAmbientLight(const ColorF&) override { No(); }
    void SetSunDirection(const TVec3<float>&) override { No(); } bool IsSelected(const INode*) const override { No(); }
    IMaterial* CreateMaterial(const QString&) override { No(); } float GetMillimetersPerUnit() const override { No(); }
    IMeshNodeBuilder* CreateMeshBuilder(INode*) override { No(); }
    void SetBackgroundMode(eBackgroundMode) override { No(); } void SetBackgroundColor(const ColorF&) override { No(); }
    INode* FindNode(const QString&) const override { No(); } IMaterial* GetDefaultMaterial() const override { No(); }
    Nodes DuplicateNodes(const Nodes&) override { No(); } bool IsGroundShadowEnabled() const override { No(); }
    IImage* GetBackgroundImage() const override { No(); } ColorF GetBackgroundColor() const override { No(); }
    void SetMillimetersPerUnit(float) override { No(); } void SetBackgroundImage(IImage*) override { No(); }
    void SetFileName(const QString&) override { No(); } void SetRenderSize(const QSize&) override { No(); }
    void SetSunLight(const ColorF&) override { No(); } void UngroupNodes(const Nodes&) override { No(); }
    void SetSelection(const Nodes&) override { No(); } void RemoveMaterial(IMaterial*) override { No(); }
    int GetCurrentAnimation() const override { No(); } void RemoveNodes(const Nodes&) override { No(); }
    void SetSelected(INode*, bool) override { No(); } float GetAnimationTime() const override { No(); }
    void SetAnimation(int, float) override { No(); } void EndUpdate() override { No(); } void Clear() override { No(); }
    ColorF GetSunLight() const override { No(); } bool IsUpdating() const override { No(); }
    Nodes GetLights() const override { No(); } bool IsModified() const override { No(); }
    void SetModified(bool) override { No(); } const Materials& GetMaterials() const override { No(); }
    // clang-format on
};

} // namespace StandIn
