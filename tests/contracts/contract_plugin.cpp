// Objects that implement contracts, in a library that shows nothing but the
// function that makes them.

#include "lumenta/foundation/Matrix.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/interfaces/INode.h"
#include "lumenta/interfaces/ISettings.h"
#include "lumenta/platform/IDocumentContext.h"

extern "C" __attribute__((visibility("default"))) QObject* MakeObject(const QString& kind);

namespace {

class MeshNode : public INode, public IMeshNode {
    Q_OBJECT
    Q_INTERFACES(IMeshNode)

public:
    int GetType() const override { return eNodeTypeMesh; }
    QString GetName() const override { return "node of a plug-in"; }
    const std::vector<INode*>& GetChildren() const override { return children; }
    const Matrix& GetMatrix() const override { return matrix; }
    INode* GetParent() const override { return nullptr; }
    void SetName(const QString&) override {}
    void SetMatrix(const Matrix&) override {}
    void SetVisible(bool) override {}
    bool IsVisible() const override { return true; }
    IScene* GetScene() const override { return nullptr; }
    int GetId() const override { return 1; }
    INode* CreateMesh(const QString&, const QString&) override { return nullptr; }
    INode* CreateGroup(const QString&) override { return nullptr; }
    INode* CreateLight(const QString&) override { return nullptr; }

    const TBBox<float>& GetBBox() const override { return box; }
    void FillBBox(TBBox<float>&) const override {}
    const std::vector<IMesh*>& GetMeshes() const override { return meshes; }
    bool IsExcludedFromTracing() const override { return false; }
    void SetExcludedFromTracing(bool) override {}
    IMaterial* GetMaterial(std::size_t) const override { return nullptr; }
    void SetMaterial(std::size_t, IMaterial*) override {}
    QString GetSource() const override { return "mesh of a plug-in"; }

private:
    std::vector<INode*> children;
    Matrix matrix{};
    TBBox<float> box;
    std::vector<IMesh*> meshes;
};

class Document : public QObject, public IDocumentContext {
    Q_OBJECT
    Q_INTERFACES(IDocumentContext)

public:
    IScene* GetScene() const override { return nullptr; }
    IUserInterface* GetUserInterface() const override { return nullptr; }
    IScriptRunner* GetScriptRunner() const override { return nullptr; }
};

class Settings : public ISettings {
    Q_OBJECT

public:
    QVariant GetValue(const QString&, const QVariant& defaultValue) const override { return defaultValue; }
    void SetValue(const QString& strName, const QVariant& value) override { Q_EMIT onValueChanged(strName, value); }
};

} // namespace

QObject* MakeObject(const QString& kind)
{
    if (kind == "mesh node") return new MeshNode;
    if (kind == "document") return new Document;
    if (kind == "settings") return new Settings;
    return nullptr;
}

#include "contract_plugin.moc"
