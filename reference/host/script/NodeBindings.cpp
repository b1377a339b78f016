#include "lumenta/foundation/BBox.h"
#include "lumenta/foundation/Matrix.h"
#include "lumenta/interfaces/ILightNode.h"
#include "lumenta/interfaces/IMesh.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/scene/BoundingBoxes.h"
#include "lumenta/scene/NodeHierarchy.h"
#include "reference/host/NodeKind.h"
#include "reference/host/script/ScriptBindings.h"
#include "reference/host/script/ScriptCall.h"

#include <algorithm>

namespace Host {

namespace {

QScriptValue GetType(ScriptCall& call)
{
    return NodeKind(call.ThisNode());
}

QScriptValue SetParent(ScriptCall& call)
{
    INode& parent = call.Node(0);
    call.Scene().MoveNodes({&call.ThisNode()}, &parent, -1);
    return {};
}

QScriptValue GetChildren(ScriptCall& call)
{
    return call.Array(call.ThisNode().GetChildren(), [&call](INode* pNode) { return call.Wrapped(pNode); });
}

QScriptValue SetMatrix(ScriptCall& call)
{
    const std::vector<float> numbers = call.Floats(0, "", 16);
    Matrix matrix;
    std::copy(numbers.begin(), numbers.end(), matrix.m);
    call.ThisNode().SetMatrix(matrix);
    return {};
}

QScriptValue GetPosition(ScriptCall& call)
{
    Matrix world;
    GetNodeGlobalMatrix(world, &call.ThisNode());
    return call.Numbers(world.GetTranslation());
}

QScriptValue GetBox(ScriptCall& call)
{
    const TBBox<float> box = ComputeNodeBBox(&call.ThisNode());
    if (box.IsEmpty()) return QScriptValue(QScriptValue::NullValue);
    QScriptValue answer = call.NewObject();
    answer.setProperty(QStringLiteral("min"), call.Numbers(box.min));
    answer.setProperty(QStringLiteral("max"), call.Numbers(box.max));
    return answer;
}

QScriptValue GetMeshes(ScriptCall& call)
{
    const auto* const pMeshNode = qobject_cast<IMeshNode*>(&call.ThisNode());
    if (!pMeshNode) return call.Texts({});
    std::size_t n = 0;
    return call.Array(pMeshNode->GetMeshes(), [&](const IMesh* pMesh) {
        QScriptValue mesh = call.NewObject();
        const std::size_t nTriangles = pMesh->GetIndices().size() / 3;
        mesh.setProperty(QStringLiteral("name"), pMesh->GetName());
        mesh.setProperty(QStringLiteral("vertexCount"), static_cast<double>(pMesh->GetVertices().size()));
        mesh.setProperty(QStringLiteral("triangleCount"), static_cast<double>(nTriangles));
        mesh.setProperty(QStringLiteral("material"), call.Wrapped(pMeshNode->GetMaterial(n++)));
        return mesh;
    });
}

/// Of all meshes at or under the node, or of one of its own.
QScriptValue SetMaterial(ScriptCall& call)
{
    INode& node = call.ThisNode();
    IMaterial* const pMaterial = call.Argument(0).isNull() ? nullptr : &call.Material(0, "material");
    if (!call.Has(1)) {
        call.Scene().AssignMaterial({&node}, pMaterial);
        return {};
    }
    auto* const pMeshNode = qobject_cast<IMeshNode*>(&node);
    if (!pMeshNode || pMeshNode->GetMeshes().empty())
        throw Exception(QStringLiteral("%1: '%2' has no meshes").arg(call.Label("mesh"), node.GetName()));
    const int nLast = static_cast<int>(pMeshNode->GetMeshes().size()) - 1;
    pMeshNode->SetMaterial(static_cast<std::size_t>(call.Integer(1, "mesh", 0, nLast)), pMaterial);
    return {};
}

QScriptValue Move(ScriptCall& call)
{
    Matrix world;
    world.SetTranslation(call.Vector(0, "offset"));
    call.Scene().TransformNodes({&call.ThisNode()}, world);
    return {};
}

QScriptValue CreateMesh(ScriptCall& call)
{
    const QString name = call.Text(0, "name");
    return call.Wrapped(call.ThisNode().CreateMesh(name, call.Text(1, "source")));
}

/// Throws nothing: the engine asks for it while it makes an Error.
QScriptValue ToString(ScriptCall& call)
{
    const auto* const pNode = qobject_cast<INode*>(call.ThisObject());
    return pNode ? pNode->GetName() : QStringLiteral("[no node]");
}

/// What only lights have: undefined for any other node.
template <typename Of>
QScriptValue OfLight(const ScriptCall& call, const Of& of)
{
    const auto* const pLight = qobject_cast<ILightNode*>(&call.ThisNode());
    return pLight ? of(*pLight) : QScriptValue(QScriptValue::UndefinedValue);
}

ILightNode& LightOf(const ScriptCall& call)
{
    INode& node = call.ThisNode();
    auto* const pLight = qobject_cast<ILightNode*>(&node);
    if (!pLight) throw Exception(QStringLiteral("%1: '%2' is no light").arg(call.Label(), node.GetName()));
    return *pLight;
}

const ScriptMember kMembers[] = {
    {"node.name", false, [](ScriptCall& call) -> QScriptValue { return call.ThisNode().GetName(); },
     [](ScriptCall& call) {
         call.ThisNode().SetName(call.Text(0));
         return QScriptValue();
     }},
    {"node.type", false, GetType},
    {"node.id", false, [](ScriptCall& call) -> QScriptValue { return call.ThisNode().GetId(); }},
    {"node.visible", false, [](ScriptCall& call) -> QScriptValue { return call.ThisNode().IsVisible(); },
     [](ScriptCall& call) {
         call.ThisNode().SetVisible(call.Flag(0));
         return QScriptValue();
     }},
    {"node.parent", false, [](ScriptCall& call) { return call.Wrapped(call.ThisNode().GetParent()); }, SetParent},
    {"node.children", false, GetChildren},
    {"node.matrix", false, [](ScriptCall& call) { return call.Numbers(call.ThisNode().GetMatrix().m, 16); }, SetMatrix},
    {"node.position", false, GetPosition},
    {"node.box", false, GetBox},
    {"node.meshes", false, GetMeshes},
    {"node.color", false,
     [](ScriptCall& call) {
         return OfLight(call, [&call](const ILightNode& light) { return call.Numbers(light.GetColor()); });
     },
     [](ScriptCall& call) {
         LightOf(call).SetColor(call.Color(0));
         return QScriptValue();
     }},
    {"node.intensity", false,
     [](ScriptCall& call) {
         return OfLight(call, [&call](const ILightNode& light) { return call.Number(light.GetIntensity()); });
     },
     [](ScriptCall& call) {
         LightOf(call).SetIntensity(call.Float(0, "", 0.0f));
         return QScriptValue();
     }},
    {"node.radius", false,
     [](ScriptCall& call) {
         return OfLight(call, [&call](const ILightNode& light) { return call.Number(light.GetRadius()); });
     },
     [](ScriptCall& call) {
         LightOf(call).SetRadius(call.Float(0, "", 0.0f));
         return QScriptValue();
     }},
    {"node.setMaterial", true, SetMaterial},
    {"node.move", true, Move},
    {"node.createGroup", true,
     [](ScriptCall& call) { return call.Wrapped(call.ThisNode().CreateGroup(call.Text(0, "name"))); }},
    {"node.createLight", true,
     [](ScriptCall& call) { return call.Wrapped(call.ThisNode().CreateLight(call.Text(0, "name"))); }},
    {"node.createMesh", true, CreateMesh},
    {"node.toString", true, ToString},
};

} // namespace

void AddNodePrototype(QScriptEngine& engine)
{
    QScriptValue prototype = engine.newObject();
    AddMembers(engine, prototype, kMembers);
    engine.setDefaultPrototype(qMetaTypeId<INode*>(), prototype);
}

} // namespace Host
