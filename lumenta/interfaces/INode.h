#pragma once

#include "lumenta/Export.h"

#include <QObject>
#include <QString>

#include <vector>

class IScene;
struct Matrix;

/// The kinds of node that the library itself tells apart. INode::GetType() may
/// answer other numbers for kinds of the host's own.
enum eNodeType {
    eNodeTypeGroup = 0,
    eNodeTypeMesh = 1, ///< Casts to IMeshNode.
    eNodeTypeLight = 2 ///< Casts to ILightNode.
};

/// A node of the scene tree: a placement, and what hangs under it.
///
/// **Who implements it:** the host. A mesh node also implements IMeshNode, a
/// light ILightNode; with `qobject_cast` a node is asked for them.
/// **Who calls it:** everyone. The library's walks use GetType(), GetChildren(),
/// GetMatrix(), GetParent() and IsVisible().
/// **Thread:** the scene's, throughout.
/// **Ownership:** the scene owns its nodes; none is ever deleted from outside. To
/// a node that was removed nothing can be added: CreateMesh() and its sisters
/// throw a LogicException.
/// **Signals:** a node has none. Each change is announced by the scene's
/// `nodeChanged`, and at the end of the batch by `afterSceneUpdate`.
class LUMENTA_EXPORT INode : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~INode() override;

    // Places 1, 3, 4, 5, 9 and 12 to 14 are fixed by the library's helpers.

    /// An eNodeType, or another number for a kind of the host's own.
    virtual int GetType() const = 0;

    /// Shown to people; need not be unique, may be empty.
    virtual QString GetName() const = 0;

    /// In order. Never holds null. The reference is good until the tree changes; while
    /// the library walks the tree, the list stays where and as it is, whatever the nodes
    /// are asked in between.
    virtual const std::vector<INode*>& GetChildren() const = 0;

    /// Placement relative to the parent.
    virtual const Matrix& GetMatrix() const = 0;

    /// Null for the root, and for a node that was removed.
    virtual INode* GetParent() const = 0;

    virtual void SetName(const QString& strName) = 0;

    virtual void SetMatrix(const Matrix& matrix) = 0;

    virtual void SetVisible(bool bVisible) = 0;

    /// Whether the node itself is shown. Says nothing of its children: a hidden
    /// node's children are shown where they are visible themselves.
    virtual bool IsVisible() const = 0;

    /// The scene that owns the node; null once it was removed.
    virtual IScene* GetScene() const = 0;

    /// A number that no other node of this scene has or ever had. Positive.
    /// Opening a stored document numbers its nodes anew.
    virtual int GetId() const = 0;

    /// Adds a mesh node, or a group of them, made from `source`: a model file or
    /// the name of something that a generator makes.
    /// \return what was added under this node, at the end
    /// \throws FileException, LoadingException; then nothing was added
    virtual INode* CreateMesh(const QString& name, const QString& source) = 0;

    /// Adds an empty group at the end of the children.
    virtual INode* CreateGroup(const QString& name) = 0;

    /// Adds a light with the host's usual values at the end of the children.
    virtual INode* CreateLight(const QString& name) = 0;
};
