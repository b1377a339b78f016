#include "lumenta/materials/MaterialXml.h"
#include "reference/host/script/ScriptBindings.h"
#include "reference/host/script/ScriptCall.h"

namespace Host {

namespace {

/// Arrays are colours, whose alpha says nothing, and rectangles.
QString JoinedNumbers(const ScriptCall& call, int n, const char* name)
{
    const bool bColor = call.Argument(n).property(QStringLiteral("length")).toUInt32() == 3;
    QStringList texts;
    for (const float number : call.Floats(n, name, bColor ? 3 : 4))
        texts += QString::number(static_cast<double>(number), 'g', 9);
    if (bColor) texts += QStringLiteral("1");
    return texts.join(QLatin1Char(' '));
}

QVariant ToParameter(const ScriptCall& call, int n, const char* name)
{
    const QScriptValue value = call.Argument(n);
    if (value.isNull()) return {};
    if (value.isArray()) return JoinedNumbers(call, n, name);
    if (!value.isString() && !value.isNumber() && !value.isBool())
        call.Reject(value, call.Label(name), QStringLiteral("string, number, boolean, array or null"));
    return value.toVariant();
}

QScriptValue Get(ScriptCall& call)
{
    const QVariant value = call.ThisMaterial().GetParameter(call.Text(0, "parameter"));
    return value.isValid() ? QScriptValue(value.toString()) : QScriptValue(QScriptValue::UndefinedValue);
}

QScriptValue Set(ScriptCall& call)
{
    const QString name = call.Text(0, "parameter");
    const QVariant value = ToParameter(call, 1, "value"); // may run a script, which may end the material
    if (!call.ThisMaterial().SetParameter(name, value))
        throw Exception(QStringLiteral("%1: '%2' makes no sense for '%3'")
                            .arg(call.Label("value"), call.Argument(1).toString(), name));
    return {};
}

QScriptValue GetParameters(ScriptCall& call)
{
    QScriptValue answer = call.NewObject();
    const QMap<QString, QVariant> parameters = call.ThisMaterial().GetParameters();
    for (auto it = parameters.begin(); it != parameters.end(); ++it)
        answer.setProperty(it.key(), it.value().toString());
    return answer;
}

/// Throws nothing: the engine asks for it while it makes an Error.
QScriptValue ToString(ScriptCall& call)
{
    const auto* const pMaterial = qobject_cast<IMaterial*>(call.ThisObject());
    return pMaterial ? pMaterial->GetName() : QStringLiteral("[no material]");
}

const ScriptMember kMembers[] = {
    {"material.name", false, [](ScriptCall& call) -> QScriptValue { return call.ThisMaterial().GetName(); },
     [](ScriptCall& call) {
         call.ThisMaterial().SetName(call.Text(0));
         return QScriptValue();
     }},
    {"material.parameters", false, GetParameters},
    {"material.xml", false,
     [](ScriptCall& call) -> QScriptValue {
         const IMaterial& material = call.ThisMaterial();
         return QString::fromUtf8(MaterialToXml(material.GetName(), material.GetParameters()));
     }},
    {"material.get", true, Get},
    {"material.set", true, Set},
    {"material.toString", true, ToString},
};

} // namespace

void AddMaterialPrototype(QScriptEngine& engine)
{
    QScriptValue prototype = engine.newObject();
    AddMembers(engine, prototype, kMembers);
    engine.setDefaultPrototype(qMetaTypeId<IMaterial*>(), prototype);
}

} // namespace Host
