#pragma once

#include "lumenta/Export.h"
#include "lumenta/foundation/Color.h"
#include "lumenta/foundation/Vector.h"
#include "lumenta/interfaces/SignalArguments.h"

#include <QObject>
#include <QSize>
#include <QString>

#include <vector>

class IFreeCamera;
class IImage;
class IMaterial;
class IMeshNodeBuilder;
class ISnapshotManager;
struct Matrix;

/// What is seen behind everything.
enum eBackgroundMode {
    eBackgroundStudio, ///< The renderer's own backdrop.
    eBackgroundColor,
    eBackgroundImage ///< Stretched over the picture. Without an image, the colour.
};

/// An animation that came with a model.
struct sAnimationInfo {
    QString strName;  ///< Need not be unique.
    QString strModel; ///< Name of the node that the model hangs under.
    float length;     ///< Milliseconds.
};

/// A document: the tree of nodes, what they wear, what lights them, from where
/// they are seen.
///
/// **Who implements it:** the host. **Who calls it:** plug-ins, tools, scripts;
/// the library's helpers ask GetRoot(), GetCamera() and
/// IsGroundPlaneEnabled().
/// **Thread:** one scene belongs to one thread, that of its QObject.
/// **Ownership:** the scene owns whatever it hands out. A node or material that is
/// removed can still be asked for its name until control returns to the event
/// loop; after that its address is only good for comparing.
/// **Lists of nodes** are handled as sets in tree order: duplicates, null and
/// nodes of another scene are passed over. Where a node and a descendant of its
/// are both listed, the node alone moves, is removed or duplicated: the
/// descendant goes with it.
///
/// **Signals.** Every change to nodes or materials happens in a batch: either
/// one that a caller brackets in BeginUpdate() and EndUpdate(), or one that the
/// operation makes for itself. `beforeSceneUpdate` is emitted once before the
/// first change of the batch, `afterSceneUpdate` once after its last one;
/// `nodeChanged` and `sceneChanged` come in between, at once with each change.
/// What is neither node nor material (ground, background, light, output, file)
/// needs no batch: `sceneChanged` alone tells of it.
/// A call that changes nothing emits nothing.
class LUMENTA_EXPORT IScene : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~IScene() override;

    // The document. Places 2, 4 and 15 are fixed by the library's helpers.

    /// Where the document is stored; empty for one that never was.
    virtual QString GetFileName() const = 0;

    /// The top of the tree: a group that can't be moved or removed. Never null.
    virtual INode* GetRoot() const = 0;

    /// Kept states of the scene. Never null.
    virtual ISnapshotManager* GetSnapshotManager() const = 0;

    /// Never null, always the same.
    virtual IFreeCamera* GetCamera() const = 0;

    // The tree.

    /// The first node of this name in tree order, the root apart; or null.
    virtual INode* FindNode(const QString& strName) const = 0;

    /// The node with this INode::GetId(), or null.
    virtual INode* GetNodeById(int nId) const = 0;

    /// Hangs nodes under another parent. Their local matrices change so that
    /// they stay where they are in the world, unless that parent is singular.
    /// \param nPosition of the first among the parent's children, counted
    ///                  without the nodes that move; beyond the end, or negative,
    ///                  is the end
    /// The root is passed over.
    /// \throws InvalidParameterException the parent is null, of another scene, one
    ///         of the nodes or under one of them; then nothing has moved
    virtual void MoveNodes(const std::vector<INode*>& nodes, INode* pParent, int nPosition) = 0;

    /// Removes nodes with everything under them. The root stays.
    virtual void RemoveNodes(const std::vector<INode*>& nodes) = 0;

    /// Copies nodes with everything under them; each copy stands right behind
    /// its original.
    /// \return the copies, in tree order
    virtual std::vector<INode*> DuplicateNodes(const std::vector<INode*>& nodes) = 0;

    /// Puts nodes into a new group in the place of the first of them. They stay
    /// where they are in the world.
    /// \return the group, or null where no node is left to be grouped
    virtual INode* GroupNodes(const std::vector<INode*>& nodes, const QString& strName) = 0;

    /// Replaces each group by its children, which stay where they are in the
    /// world. Nodes that are no groups are passed over.
    virtual void UngroupNodes(const std::vector<INode*>& nodes) = 0;

    // Batches.

    /// Opens a batch; a batch within a batch is part of it. `planned` is what
    /// `beforeSceneUpdate` tells, as far as the caller knows it.
    virtual void BeginUpdate(const sSceneModifications& planned) = 0;

    /// Closes what the last BeginUpdate() opened.
    /// \throws LogicException nothing is open
    virtual void EndUpdate() = 0;

    /// Whether a batch is open.
    virtual bool IsUpdating() const = 0;

    // The ground: the plane z = 0.

    /// Whether there is a ground. Picking falls back to it, renderers draw it.
    virtual bool IsGroundPlaneEnabled() const = 0;

    virtual void SetGroundPlaneEnabled(bool bEnabled) = 0;

    /// Whether the ground, if there is one, catches shadows.
    virtual bool IsGroundShadowEnabled() const = 0;

    virtual void SetGroundShadowEnabled(bool bEnabled) = 0;

    // The background.

    /// Which of the three is seen.
    virtual eBackgroundMode GetBackgroundMode() const = 0;
    virtual void SetBackgroundMode(eBackgroundMode mode) = 0;
    /// Seen with eBackgroundColor, and where an image is missing.
    virtual ColorF GetBackgroundColor() const = 0;
    virtual void SetBackgroundColor(const ColorF& color) = 0;

    /// Null where there is none.
    virtual IImage* GetBackgroundImage() const = 0;

    /// The scene keeps the address and doesn't own the image; an image that is
    /// deleted is forgotten by itself. Null takes the image away.
    virtual void SetBackgroundImage(IImage* pImage) = 0;

    // Light.

    /// The light of the sky, from everywhere; white for that of a new scene.
    virtual ColorF GetAmbientLight() const = 0;
    virtual void SetAmbientLight(const ColorF& color) = 0;

    /// Light nodes in tree order, hidden ones too.
    virtual std::vector<INode*> GetLights() const = 0;

    /// Unit, from the scene towards the sun. The zero vector, as in a new scene,
    /// for a sun that stands over the photographer's left shoulder.
    virtual TVec3<float> GetSunDirection() const = 0;

    /// \param direction of any length; zero for the sun over the photographer's
    ///                  left shoulder. One that isn't finite is ignored.
    virtual void SetSunDirection(const TVec3<float>& direction) = 0;

    /// White for the sun of a new scene, black for none.
    virtual ColorF GetSunLight() const = 0;
    virtual void SetSunLight(const ColorF& color) = 0;

    // The selection. Changes emit `selectionChanged`.

    /// In tree order. Removed nodes leave it by themselves.
    virtual const std::vector<INode*>& GetSelection() const = 0;

    virtual void SetSelection(const std::vector<INode*>& nodes) = 0;

    /// False for null and nodes of another scene.
    virtual bool IsSelected(const INode* pNode) const = 0;

    /// Adds a node to the selection or takes it out.
    virtual void SetSelected(INode* pNode, bool bSelected) = 0;

    // Meshes made in memory.

    /// A way in for loaders, generators and whoever else makes meshes: adds what
    /// it receives as mesh nodes at the end of pParent's children, in whose space
    /// the vertices are. All that comes between BeginModel() and EndModel() is
    /// added by the latter, in one batch; consecutive meshes of one name share a
    /// node. Materials of the same name and parameters (those of IMaterial) are
    /// made once per builder, without loading their images; a mesh that brings
    /// neither wears the default one.
    ///
    /// AddMeshNode() throws an InvalidParameterException where the indices are no
    /// triangles of the vertices, EndModel() a LogicException where the parent
    /// was removed in the meantime.
    /// \return the caller's, to be deleted. A set that was not ended is dropped,
    ///         so that whoever fails half-way leaves nothing behind.
    /// \throws InvalidParameterException the parent is null or of another scene
    virtual IMeshNodeBuilder* CreateMeshBuilder(INode* pParent) = 0;

    // Many nodes at once, each in one batch.

    /// Moves nodes within the world by a matrix: where p was, p · `world` is
    /// then. A node under another listed one moves with it, once.
    virtual void TransformNodes(const std::vector<INode*>& nodes, const Matrix& world) = 0;

    /// Lifts or lowers each node so that its box stands on z = 0.
    virtual void PlaceOnGround(const std::vector<INode*>& nodes) = 0;

    /// Gives every mesh at or under the nodes a material; null for the default one.
    virtual void AssignMaterial(const std::vector<INode*>& nodes, IMaterial* pMaterial) = 0;

    // Materials.

    /// In order of creation; the default material is the first.
    virtual const std::vector<IMaterial*>& GetMaterials() const = 0;

    /// The first of this name, or null.
    virtual IMaterial* FindMaterial(const QString& strName) const = 0;

    /// A new material. Names need not be unique.
    virtual IMaterial* CreateMaterial(const QString& strName) = 0;

    /// Meshes that wear it fall back to the default material, which itself can't
    /// be removed. A material of another scene is passed over.
    virtual void RemoveMaterial(IMaterial* pMaterial) = 0;

    /// What meshes wear that nothing was assigned to. Never null.
    virtual IMaterial* GetDefaultMaterial() const = 0;

    /// Mesh nodes of which a mesh wears `pMaterial`, in tree order.
    virtual std::vector<INode*> GetNodesWithMaterial(const IMaterial* pMaterial) const = 0;

    // Animation. The models of a scene bring their animations; one plays at a time.

    /// Of all models, in tree order of their nodes.
    virtual std::vector<sAnimationInfo> GetAnimations() const = 0;

    /// Index into GetAnimations(), or −1 while every model is at rest.
    virtual int GetCurrentAnimation() const = 0;

    /// Milliseconds; 0 while every model is at rest.
    virtual float GetAnimationTime() const = 0;

    /// Poses the model that the animation belongs to, and puts the one that
    /// played before at rest.
    /// \param nAnimation −1 for none
    /// \throws InvalidParameterException there is no such animation
    virtual void SetAnimation(int nAnimation, float time) = 0;

    // The file.

    /// Whether there is something to save.
    virtual bool IsModified() const = 0;

    /// Cleared by whoever has saved.
    virtual void SetModified(bool bModified) = 0;

    virtual void SetFileName(const QString& strFileName) = 0;

    /// Back to an empty document: no nodes but the root, no materials but the
    /// default one, no snapshots, no file name, everything else as in a new one.
    virtual void Clear() = 0;

    // Output.

    /// Physical size of a world unit; what makes printed pictures true to scale.
    virtual float GetMillimetersPerUnit() const = 0;

    /// \param millimeters positive and finite; anything else is ignored
    virtual void SetMillimetersPerUnit(float millimeters) = 0;

    /// In pixels: the size that a picture of the document has if nobody asks for
    /// another one.
    virtual QSize GetRenderSize() const = 0;

    /// An empty size is ignored.
    virtual void SetRenderSize(const QSize& size) = 0;

Q_SIGNALS:
    void selectionChanged();                                      ///< GetSelection() answers another list.
    void nodeChanged(const INode* pNode, eNodeChangedFlags what); ///< At once with each change of a node.
    void sceneChanged(eSceneChangedFlags what);                   ///< At once with each change beside the nodes.
    void beforeSceneUpdate(const sSceneModifications&);           ///< A batch begins; with what is planned.
    void afterSceneUpdate(const sSceneModifications&);            ///< A batch has ended; with what came of it.
};
