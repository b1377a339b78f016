#include "reference/host/script/ScriptCall.h"

#include "lumenta/script/ScriptArguments.h"
#include "lumenta/script/ScriptDocument.h"

#include <cmath>
#include <exception>

namespace Host {

namespace {

/// Ends a native function whose Error has been raised already.
struct Raised {};

template <typename Function>
QScriptValue Guarded(const ScriptMember& member, const Function& function, QScriptContext& context,
                     QScriptEngine& engine)
{
    QString text;
    try {
        ScriptCall call(member, context, engine);
        return function(call);
    } catch (const Raised&) {
        return {};
    } catch (const Exception& exception) {
        text = exception.GetErrorText();
    } catch (const std::exception& exception) {
        text = QString::fromLocal8Bit(exception.what());
    } catch (...) {
        text = QStringLiteral("an unknown error has occurred");
    }
    return context.throwError(text);
}

const ScriptMember& MemberOf(void* pMember)
{
    return *static_cast<const ScriptMember*>(pMember);
}

QScriptValue CallMember(QScriptContext* pContext, QScriptEngine* pEngine, void* pMember)
{
    return Guarded(MemberOf(pMember), MemberOf(pMember).call, *pContext, *pEngine);
}

/// Without this the engine would make a property of the same name that hides the real one.
QScriptValue RefuseAssignment(ScriptCall& call)
{
    throw LogicException(call.Label() + QStringLiteral(" can't be assigned to"));
}

QScriptValue AssignMember(QScriptContext* pContext, QScriptEngine* pEngine, void* pMember)
{
    const ScriptFunction assign = MemberOf(pMember).assign;
    return Guarded(MemberOf(pMember), assign ? assign : RefuseAssignment, *pContext, *pEngine);
}

} // namespace

void AddMember(QScriptEngine& engine, QScriptValue& object, const ScriptMember& member)
{
    auto* const pMember = const_cast<ScriptMember*>(&member); // handed back as what it is
    const QString name = QString::fromLatin1(member.name).section(QLatin1Char('.'), -1);
    const QScriptValue call = engine.newFunction(CallMember, pMember);
    if (member.isFunction) return object.setProperty(name, call, QScriptValue::SkipInEnumeration);
    object.setProperty(name, call, QScriptValue::PropertyGetter);
    object.setProperty(name, engine.newFunction(AssignMember, pMember), QScriptValue::PropertySetter);
}

ScriptCall::ScriptCall(const ScriptMember& member, QScriptContext& context, QScriptEngine& engine)
    : m_member(QString::fromLatin1(member.name))
    , m_context(context)
    , m_engine(engine)
{
}

IDocumentContext& ScriptCall::Document() const
{
    IDocumentContext* const pDocument = documentContextFromScriptEngine(&m_engine);
    if (!pDocument) throw LogicException(QStringLiteral("the script has no document"));
    return *pDocument;
}

IScene& ScriptCall::Scene() const
{
    return *Document().GetScene();
}

QString ScriptCall::Label(const char* name) const
{
    return *name ? QStringLiteral("%1(%2)").arg(m_member, QLatin1String(name)) : m_member;
}

void ScriptCall::Require(bool bFits) const
{
    if (!bFits) throw Raised();
}

void ScriptCall::Reject(const QScriptValue& value, const QString& label, const QString& expected) const
{
    const QString shown = value.toString(); // may run a script, and that may fail
    m_context.throwError(QStringLiteral("%1: invalid parameter '%2', %3 expected").arg(label, shown, expected));
    throw Raised();
}

float ScriptCall::Float(int n, const char* name, float least, float most) const
{
    float number = 0.0f;
    Require(parseScriptValueToFloat(Argument(n), Label(name), &m_engine, least, most, number));
    return number;
}

int ScriptCall::Integer(int n, const char* name, int least, int most) const
{
    int number = 0;
    Require(parseScriptValueToInt(Argument(n), Label(name), &m_engine, least, most, number));
    return number;
}

QString ScriptCall::Text(int n, const char* name) const
{
    QString text;
    Require(parseScriptValueToString(Argument(n), Label(name), &m_engine, text));
    return text;
}

bool ScriptCall::Flag(int n, const char* name) const
{
    bool flag = false;
    Require(parseScriptValueToBool(Argument(n), Label(name), &m_engine, flag));
    return flag;
}

std::vector<float> ScriptCall::Floats(int n, const char* name, std::size_t count) const
{
    const QScriptValue array = Argument(n);
    if (!array.isArray() || array.property(QStringLiteral("length")).toUInt32() != count)
        Reject(array, Label(name), QStringLiteral("array of %1 numbers").arg(count));
    std::vector<float> numbers(count);
    for (quint32 i = 0; i < count; ++i)
        Require(parseScriptValueToFloat(array.property(i), QStringLiteral("%1[%2]").arg(Label(name)).arg(i), &m_engine,
                                        -kMost, kMost, numbers[i]));
    return numbers;
}

TVec3<float> ScriptCall::Vector(int n, const char* name) const
{
    const std::vector<float> numbers = Floats(n, name, 3);
    return {numbers[0], numbers[1], numbers[2]};
}

ColorF ScriptCall::Color(int n, const char* name) const
{
    const std::vector<float> numbers = Floats(n, name, 3);
    return {numbers[0], numbers[1], numbers[2], 1.0f};
}

std::vector<INode*> ScriptCall::Nodes(int n, const char* name) const
{
    const QScriptValue array = Argument(n);
    if (!array.isArray()) Reject(array, Label(name), QStringLiteral("array of nodes"));
    const auto toNode = [&](const QScriptValue& value, std::size_t nValue) {
        return &ToNode(value, QStringLiteral("%1[%2]").arg(Label(name)).arg(nValue));
    };
    std::vector<QScriptValue> values;
    const quint32 count = array.property(QStringLiteral("length")).toUInt32();
    for (quint32 i = 0; i < count; ++i) {
        values.push_back(array.property(i));
        toNode(values.back(), i); // the first that is none ends it
    }
    std::vector<INode*> nodes; // once all are there: getters are scripts, and may end one
    nodes.reserve(values.size());
    for (const QScriptValue& value : values)
        nodes.push_back(toNode(value, nodes.size()));
    return nodes;
}

template <typename T>
T& ScriptCall::Owned(T& object, const QString& label, const char* kind) const
{
    if (object.GetScene() == &Scene()) return object;
    throw LogicException(
        QStringLiteral("%1: the %2 '%3' was removed").arg(label, QLatin1String(kind), object.GetName()));
}

INode& ScriptCall::ToNode(const QScriptValue& value, const QString& label) const
{
    auto* const pNode = qobject_cast<INode*>(value.toQObject());
    if (!pNode) Reject(value, label, QStringLiteral("node"));
    return Owned(*pNode, label, "node");
}

IMaterial& ScriptCall::Material(int n, const char* name) const
{
    auto* const pMaterial = qobject_cast<IMaterial*>(Argument(n).toQObject());
    if (!pMaterial) Reject(Argument(n), Label(name), QStringLiteral("material"));
    return Owned(*pMaterial, Label(name), "material");
}

// These don't show what they were called on: its toString() may be what is running.

INode& ScriptCall::ThisNode() const
{
    auto* const pNode = qobject_cast<INode*>(ThisObject());
    if (!pNode) throw LogicException(m_member + QStringLiteral(": called on what is no node"));
    return Owned(*pNode, m_member, "node");
}

IMaterial& ScriptCall::ThisMaterial() const
{
    auto* const pMaterial = qobject_cast<IMaterial*>(ThisObject());
    if (!pMaterial) throw LogicException(m_member + QStringLiteral(": called on what is no material"));
    return Owned(*pMaterial, m_member, "material");
}

QScriptValue ScriptCall::Wrapped(QObject* pObject) const
{
    if (!pObject) return QScriptValue(QScriptValue::NullValue);
    // What the class says in C++ is not for scripts: they have its prototype.
    return m_engine.newQObject(pObject, QScriptEngine::QtOwnership,
                               QScriptEngine::PreferExistingWrapperObject | QScriptEngine::ExcludeSuperClassContents
                                   | QScriptEngine::ExcludeChildObjects | QScriptEngine::ExcludeDeleteLater);
}

QScriptValue ScriptCall::Number(float number) const
{
    // The engine keeps pointers in the bits of NaNs, and takes some of them, which
    // a document may hold, for such.
    if (std::isnan(number)) return std::numeric_limits<double>::quiet_NaN();
    return static_cast<double>(number);
}

QScriptValue ScriptCall::Numbers(const float* pNumbers, std::size_t count) const
{
    return Array(std::vector<float>(pNumbers, pNumbers + count), [this](float number) { return Number(number); });
}

QScriptValue ScriptCall::Numbers(const TVec3<float>& vector) const
{
    const float numbers[] = {vector.x, vector.y, vector.z};
    return Numbers(numbers, 3);
}

QScriptValue ScriptCall::Numbers(const ColorF& color) const
{
    const float numbers[] = {color.r, color.g, color.b};
    return Numbers(numbers, 3);
}

QScriptValue ScriptCall::Texts(const QStringList& texts) const
{
    return Array(texts, [](const QString& text) { return QScriptValue(text); });
}

} // namespace Host
