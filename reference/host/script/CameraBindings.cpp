#include "lumenta/foundation/BBox.h"
#include "lumenta/foundation/Matrix.h"
#include "lumenta/interfaces/IFreeCamera.h"
#include "lumenta/scene/BoundingBoxes.h"
#include "reference/host/script/ScriptBindings.h"
#include "reference/host/script/ScriptCall.h"

namespace Host {

namespace {

constexpr float kLeast = std::numeric_limits<float>::min();

IFreeCamera& CameraOf(const ScriptCall& call)
{
    return *call.Scene().GetCamera();
}

QScriptValue SetHeading(ScriptCall& call)
{
    CameraOf(call).SetAngles(call.Float(0), CameraOf(call).GetPitch());
    return {};
}

QScriptValue SetPitch(ScriptCall& call)
{
    CameraOf(call).SetAngles(CameraOf(call).GetHeading(), call.Float(0, "", -90.0f, 90.0f));
    return {};
}

/// All that is visible, or a node with what is under it.
QScriptValue Frame(ScriptCall& call)
{
    TBBox<float> box;
    if (call.Has(0))
        box = ComputeNodeBBox(&call.Node(0, "node"));
    else
        UpdateBBoxRecursive(box, call.Scene().GetRoot(), Matrix());
    CameraOf(call).FrameBox(box);
    return {};
}

QScriptValue LookFrom(ScriptCall& call)
{
    static const QStringList views = {QStringLiteral("front"), QStringLiteral("back"), QStringLiteral("left"),
                                      QStringLiteral("right"), QStringLiteral("top"),  QStringLiteral("bottom")};
    const int nView = views.indexOf(call.Text(0, "view"));
    if (nView < 0)
        call.Reject(call.Argument(0), call.Label("view"), QStringLiteral("one of ") + views.join(QStringLiteral(", ")));
    CameraOf(call).LookFrom(static_cast<eCameraView>(eCameraViewFront + nView));
    return {};
}

QScriptValue LookAt(ScriptCall& call)
{
    const TVec3<float> position = call.Vector(0, "position");
    CameraOf(call).LookAt(position, call.Vector(1, "target"));
    return {};
}

const ScriptMember kMembers[] = {
    {"camera.heading", false, [](ScriptCall& call) { return call.Number(CameraOf(call).GetHeading()); }, SetHeading},
    {"camera.pitch", false, [](ScriptCall& call) { return call.Number(CameraOf(call).GetPitch()); }, SetPitch},
    {"camera.distance", false, [](ScriptCall& call) { return call.Number(CameraOf(call).GetDistance()); },
     [](ScriptCall& call) {
         CameraOf(call).SetDistance(call.Float(0, "", kLeast));
         return QScriptValue();
     }},
    {"camera.fieldOfView", false, [](ScriptCall& call) { return call.Number(CameraOf(call).GetFieldOfView()); },
     [](ScriptCall& call) {
         CameraOf(call).SetFieldOfView(call.Float(0, "", 1.0f, 170.0f));
         return QScriptValue();
     }},
    {"camera.frameAspect", false, [](ScriptCall& call) { return call.Number(CameraOf(call).GetFrameAspect()); },
     [](ScriptCall& call) {
         CameraOf(call).SetFrameAspect(call.Float(0, "", kLeast));
         return QScriptValue();
     }},
    {"camera.target", false, [](ScriptCall& call) { return call.Numbers(CameraOf(call).GetTarget()); },
     [](ScriptCall& call) {
         CameraOf(call).SetTarget(call.Vector(0));
         return QScriptValue();
     }},
    {"camera.position", false,
     [](ScriptCall& call) { return call.Numbers(CameraOf(call).GetMatrix().GetTranslation()); }},
    {"camera.frame", true, Frame},
    {"camera.lookFrom", true, LookFrom},
    {"camera.lookAt", true, LookAt},
};

} // namespace

void AddCameraPrototype(QScriptEngine& engine)
{
    QScriptValue prototype = engine.newObject();
    AddMembers(engine, prototype, kMembers);
    engine.setDefaultPrototype(qMetaTypeId<IFreeCamera*>(), prototype);
}

} // namespace Host
