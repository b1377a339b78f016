#pragma once

#include "lumenta/foundation/Matrix.h"
#include "lumenta/foundation/MeshVertex.h"
#include "lumenta/interfaces/ILightNode.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/interfaces/INode.h"
#include "lumenta/interfaces/SignalArguments.h"

#include <memory>

namespace Host {

class Mesh;
class Scene;

/// A group, and what all kinds of node have in common. Made and ended by its
/// scene. A node that was removed keeps its values and lets them be changed,
/// but nobody is told; it can't get children any more.
class Node : public INode {
    Q_OBJECT

public:
    Node(int nType, int nId, const QString& strName);
    ~Node() override;

    int GetType() const override { return m_nType; }
    QString GetName() const override { return m_strName; }
    const std::vector<INode*>& GetChildren() const override { return m_children; }
    const Matrix& GetMatrix() const override { return m_matrix; }
    INode* GetParent() const override { return m_pParent; }
    void SetName(const QString& strName) override;
    /// Does nothing to the root.
    void SetMatrix(const Matrix& matrix) override;
    void SetVisible(bool bVisible) override;
    bool IsVisible() const override { return m_bVisible; }
    IScene* GetScene() const override;
    int GetId() const override { return m_nId; }

    /// A group that stands up, with the meshes of the model that the scene's
    /// reader makes of `source`.
    /// \throws LoadingException also where the scene has no reader
    INode* CreateMesh(const QString& name, const QString& source) override;
    INode* CreateGroup(const QString& name) override;
    INode* CreateLight(const QString& name) override;

protected:
    /// Sets a value and tells the scene, unless it is that value already.
    template <typename T>
    void Assign(T& field, const T& value, eNodeChangedFlags what);

    Scene* OwnScene() const { return m_pScene; }
    void CopyPlacement(const Node& other);

private:
    friend class Scene;

    /// The same values under another number, without children.
    virtual std::unique_ptr<Node> Copy(int nId) const;

    Scene& SceneOrThrow() const;

    const int m_nType;
    const int m_nId;
    QString m_strName;
    Matrix m_matrix;
    bool m_bVisible = true;
    bool m_bSelected = false;
    Node* m_pParent = nullptr;
    Scene* m_pScene = nullptr;
    std::vector<INode*> m_children;
};

class MeshNode final : public Node, public IMeshNode {
    Q_OBJECT
    Q_INTERFACES(IMeshNode)

public:
    MeshNode(int nId, const QString& strName, const QString& strSource);
    ~MeshNode() override;

    const TBBox<float>& GetBBox() const override { return m_box; }
    void FillBBox(TBBox<float>& box) const override;
    const std::vector<IMesh*>& GetMeshes() const override { return m_meshes; }
    bool IsExcludedFromTracing() const override { return m_bExcluded; }
    void SetExcludedFromTracing(bool bExcluded) override;
    /// Null on a node that was removed.
    IMaterial* GetMaterial(std::size_t nMesh) const override;
    /// Passes over a material of another scene.
    void SetMaterial(std::size_t nMesh, IMaterial* pMaterial) override;
    QString GetSource() const override { return m_strSource; }

private:
    friend class Scene;

    std::unique_ptr<Node> Copy(int nId) const override;
    void AddMesh(std::unique_ptr<Mesh> mesh, IMaterial* pMaterial);
    void ReplaceVertices(Mesh& mesh, const std::vector<MeshVertex>& vertices);
    /// What each mesh was given; null for the default one.
    std::vector<IMaterial*> GivenMaterials() const;
    void GiveMaterials(const std::vector<IMaterial*>& materials);
    void UpdateBox();

    QString m_strSource;
    std::vector<IMesh*> m_meshes; ///< Owned.
    TBBox<float> m_box;
    bool m_bExcluded = false;
};

/// A lamp. A new one is white, of intensity 1, casts shadows, and has a radius
/// of 0.1.
class LightNode final : public Node, public ILightNode {
    Q_OBJECT
    Q_INTERFACES(ILightNode)

public:
    LightNode(int nId, const QString& strName);

    ColorF GetColor() const override { return m_color; }
    void SetColor(const ColorF& color) override;
    float GetIntensity() const override { return m_intensity; }
    void SetIntensity(float intensity) override;
    bool CastsShadows() const override { return m_bCastsShadows; }
    float GetRadius() const override { return m_radius; }
    void SetRadius(float radius) override;
    void SetCastsShadows(bool bCasts) override;

private:
    std::unique_ptr<Node> Copy(int nId) const override;

    ColorF m_color{1.0f, 1.0f, 1.0f, 1.0f};
    float m_intensity = 1.0f;
    float m_radius = 0.1f;
    bool m_bCastsShadows = true;
};

} // namespace Host
