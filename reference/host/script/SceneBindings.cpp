#include "lumenta/interfaces/IFreeCamera.h"
#include "lumenta/interfaces/IMesh.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/interfaces/IRender.h"
#include "lumenta/scene/NodeHierarchy.h"
#include "lumenta/scene/Picking.h"
#include "reference/host/script/IScriptServices.h"
#include "reference/host/script/ScriptBindings.h"
#include "reference/host/script/ScriptCall.h"

#include <algorithm>

namespace Host {

namespace {

constexpr int kMostPixels = 16384;
constexpr int kMostSamples = 65536;

QScriptValue Null()
{
    return QScriptValue(QScriptValue::NullValue);
}

// ------------------------------------------------------------------ the tree

QScriptValue GetNodes(ScriptCall& call)
{
    const std::vector<INode*> nodes = CollectAllChildren(call.Scene().GetRoot()->GetChildren());
    return call.Array(nodes, [&call](INode* pNode) { return call.Wrapped(pNode); });
}

QScriptValue GetSelection(ScriptCall& call)
{
    return call.Array(call.Scene().GetSelection(), [&call](INode* pNode) { return call.Wrapped(pNode); });
}

QScriptValue Remove(ScriptCall& call)
{
    INode& node = call.Node(0, "node");
    if (&node == call.Scene().GetRoot())
        throw Exception(call.Label("node") + QStringLiteral(": the root can't be removed"));
    call.Scene().RemoveNodes({&node});
    return {};
}

/// All changes that a function makes, as one.
QScriptValue Batch(ScriptCall& call)
{
    QScriptValue function = call.Argument(0);
    if (!function.isFunction()) call.Reject(function, call.Label("function"), QStringLiteral("function"));
    sSceneModifications planned;
    planned.strTitle = QStringLiteral("Script");
    call.Scene().BeginUpdate(planned);
    const QScriptValue answer = function.call(); // what it throws stays in the engine
    call.Scene().EndUpdate();
    return answer;
}

// ----------------------------------------------------------------- materials

QScriptValue GetMaterials(ScriptCall& call)
{
    return call.Array(call.Scene().GetMaterials(), [&call](IMaterial* pMaterial) { return call.Wrapped(pMaterial); });
}

QScriptValue RemoveMaterial(ScriptCall& call)
{
    IMaterial& material = call.Material(0, "material");
    if (&material == call.Scene().GetDefaultMaterial())
        throw Exception(call.Label("material") + QStringLiteral(": the default material can't be removed"));
    call.Scene().RemoveMaterial(&material);
    return {};
}

// ----------------------------------------------------------------- animation

QScriptValue GetAnimations(ScriptCall& call)
{
    return call.Array(call.Scene().GetAnimations(), [&call](const sAnimationInfo& info) {
        QScriptValue animation = call.NewObject();
        animation.setProperty(QStringLiteral("name"), info.strName);
        animation.setProperty(QStringLiteral("model"), info.strModel);
        animation.setProperty(QStringLiteral("length"), call.Number(info.length));
        return animation;
    });
}

/// By number, or the first of a name.
int AnimationOf(const ScriptCall& call, int n, const char* name)
{
    const std::vector<sAnimationInfo> animations = call.Scene().GetAnimations();
    if (animations.empty()) throw Exception(call.Label(name) + QStringLiteral(": the scene has no animation"));
    if (!call.Argument(n).isString()) return call.Integer(n, name, 0, static_cast<int>(animations.size()) - 1);
    const QString text = call.Text(n, name);
    const auto found = std::find_if(animations.begin(), animations.end(),
                                    [&text](const sAnimationInfo& info) { return info.strName == text; });
    if (found == animations.end())
        throw Exception(QStringLiteral("%1: there is no animation '%2'").arg(call.Label(name), text));
    return static_cast<int>(found - animations.begin());
}

QScriptValue Pose(ScriptCall& call)
{
    const int nAnimation = AnimationOf(call, 0, "animation");
    call.Scene().SetAnimation(nAnimation, call.Float(1, "time"));
    return {};
}

QScriptValue GetAnimation(ScriptCall& call)
{
    const int nAnimation = call.Scene().GetCurrentAnimation();
    return nAnimation < 0 ? Null() : QScriptValue(nAnimation);
}

// --------------------------------------------------------------- environment

QScriptValue GetBackground(ScriptCall& call)
{
    switch (call.Scene().GetBackgroundMode()) {
    case eBackgroundColor:
        return call.Numbers(call.Scene().GetBackgroundColor());
    case eBackgroundImage:
        return QStringLiteral("image");
    default:
        return QStringLiteral("studio");
    }
}

QScriptValue SetBackground(ScriptCall& call)
{
    const bool bColor = call.Argument(0).isArray();
    if (!bColor && call.Text(0) != QLatin1String("studio"))
        call.Reject(call.Argument(0), call.Label(), QStringLiteral("'studio' or array of 3 numbers"));
    if (bColor) call.Scene().SetBackgroundColor(call.Color(0));
    call.Scene().SetBackgroundMode(bColor ? eBackgroundColor : eBackgroundStudio);
    return {};
}

// ------------------------------------------------------------------- looking

/// Which of its meshes, or null for a light.
QScriptValue MeshNumber(const INode& node, const IMesh* pMesh)
{
    const auto* const pMeshNode = qobject_cast<IMeshNode*>(&node);
    if (!pMeshNode || !pMesh) return Null();
    const std::vector<IMesh*>& meshes = pMeshNode->GetMeshes();
    return static_cast<int>(std::find(meshes.begin(), meshes.end(), pMesh) - meshes.begin());
}

QScriptValue Pick(ScriptCall& call)
{
    const int nWidth = call.Integer(2, "width", 1, kMostPixels);
    const int nHeight = call.Integer(3, "height", 1, kMostPixels);
    const QPoint pixel(call.Integer(0, "x", 0, nWidth - 1), call.Integer(1, "y", 0, nHeight - 1));
    const TVec2<float> view{static_cast<float>(nWidth), static_cast<float>(nHeight)};
    INode* pNode = nullptr;
    const IMesh* pMesh = nullptr;
    FindNodeByScreenPoint(pixel, view, call.Scene(), pNode, pMesh);
    TVec3<float> point{};
    const bool bPoint = FindIntersectionByScreenPoint(pixel, view, call.Scene(), point);
    if (!pNode && !bPoint) return Null();
    QScriptValue answer = call.NewObject();
    answer.setProperty(QStringLiteral("node"), call.Wrapped(pNode));
    answer.setProperty(QStringLiteral("mesh"), pNode ? MeshNumber(*pNode, pMesh) : Null());
    answer.setProperty(QStringLiteral("point"), bPoint ? call.Numbers(point) : Null());
    return answer;
}

// --------------------------------------------------------------------- files

IScriptServices& ServicesOf(const ScriptCall& call)
{
    auto* const pServices = dynamic_cast<IScriptServices*>(&call.Document());
    if (!pServices) throw LogicException(call.Label() + QStringLiteral(": the document can't write files"));
    return *pServices;
}

QScriptValue Render(ScriptCall& call)
{
    const QString file = call.Text(0, "file");
    sRenderSettings settings;
    settings.size = {call.Integer(1, "width", 1, kMostPixels), call.Integer(2, "height", 1, kMostPixels)};
    if (call.Has(3)) settings.nSamplesPerPixel = call.Integer(3, "samples", 1, kMostSamples);
    const QString renderer = call.Has(4) ? call.Text(4, "renderer") : QString();
    return call.Texts(ServicesOf(call).SavePicture(file, settings, renderer));
}

const ScriptMember kMembers[] = {
    {"scene.fileName", false, [](ScriptCall& call) -> QScriptValue { return call.Scene().GetFileName(); }},
    {"scene.root", false, [](ScriptCall& call) { return call.Wrapped(call.Scene().GetRoot()); }},
    {"scene.camera", false, [](ScriptCall& call) { return call.Wrapped(call.Scene().GetCamera()); }},
    {"scene.nodes", false, GetNodes},
    {"scene.selection", false, GetSelection,
     [](ScriptCall& call) {
         call.Scene().SetSelection(call.Nodes(0));
         return QScriptValue();
     }},
    {"scene.find", true, [](ScriptCall& call) { return call.Wrapped(call.Scene().FindNode(call.Text(0, "name"))); }},
    {"scene.remove", true, Remove},
    {"scene.batch", true, Batch},
    {"scene.materials", false, GetMaterials},
    {"scene.material", true,
     [](ScriptCall& call) { return call.Wrapped(call.Scene().FindMaterial(call.Text(0, "name"))); }},
    {"scene.createMaterial", true,
     [](ScriptCall& call) { return call.Wrapped(call.Scene().CreateMaterial(call.Text(0, "name"))); }},
    {"scene.removeMaterial", true, RemoveMaterial},
    {"scene.animations", false, GetAnimations},
    {"scene.animation", false, GetAnimation},
    {"scene.time", false, [](ScriptCall& call) { return call.Number(call.Scene().GetAnimationTime()); }},
    {"scene.pose", true, Pose},
    {"scene.rest", true,
     [](ScriptCall& call) {
         call.Scene().SetAnimation(-1, 0.0f);
         return QScriptValue();
     }},
    {"scene.ground", false, [](ScriptCall& call) -> QScriptValue { return call.Scene().IsGroundPlaneEnabled(); },
     [](ScriptCall& call) {
         call.Scene().SetGroundPlaneEnabled(call.Flag(0));
         return QScriptValue();
     }},
    {"scene.groundShadow", false, [](ScriptCall& call) -> QScriptValue { return call.Scene().IsGroundShadowEnabled(); },
     [](ScriptCall& call) {
         call.Scene().SetGroundShadowEnabled(call.Flag(0));
         return QScriptValue();
     }},
    {"scene.background", false, GetBackground, SetBackground},
    {"scene.ambientLight", false, [](ScriptCall& call) { return call.Numbers(call.Scene().GetAmbientLight()); },
     [](ScriptCall& call) {
         call.Scene().SetAmbientLight(call.Color(0));
         return QScriptValue();
     }},
    {"scene.sunLight", false, [](ScriptCall& call) { return call.Numbers(call.Scene().GetSunLight()); },
     [](ScriptCall& call) {
         call.Scene().SetSunLight(call.Color(0));
         return QScriptValue();
     }},
    {"scene.sunDirection", false, [](ScriptCall& call) { return call.Numbers(call.Scene().GetSunDirection()); },
     [](ScriptCall& call) {
         call.Scene().SetSunDirection(call.Vector(0));
         return QScriptValue();
     }},
    {"scene.pick", true, Pick},
    {"scene.render", true, Render},
    {"scene.save", true, [](ScriptCall& call) { return call.Texts(ServicesOf(call).Save(call.Text(0, "file"))); }},
};

} // namespace

void AddBindings(QScriptEngine& engine)
{
    AddNodePrototype(engine);
    AddMaterialPrototype(engine);
    AddCameraPrototype(engine);
    QScriptValue scene = engine.newObject();
    AddMembers(engine, scene, kMembers);
    engine.globalObject().setProperty(QStringLiteral("scene"), scene,
                                      QScriptValue::ReadOnly | QScriptValue::Undeletable);
}

} // namespace Host
