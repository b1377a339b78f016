#pragma once

#include "lumenta/foundation/Color.h"
#include "lumenta/foundation/Exceptions.h"
#include "lumenta/foundation/Vector.h"
#include "lumenta/interfaces/IMaterial.h"
#include "lumenta/interfaces/INode.h"
#include "lumenta/interfaces/IScene.h"
#include "lumenta/platform/IDocumentContext.h"

#include <QScriptContext>
#include <QScriptEngine>
#include <QScriptValue>

#include <limits>
#include <vector>

namespace Host {

class ScriptCall;
using ScriptFunction = QScriptValue (*)(ScriptCall& call);

/// A row of the table of what scripts can do with an object.
struct ScriptMember {
    const char* name;                ///< As errors tell it: "node.move".
    bool isFunction;                 ///< Or else a property.
    ScriptFunction call;             ///< What is called, or reads the property.
    ScriptFunction assign = nullptr; ///< Null for a property that can't be assigned to.
};

/// A call of a native function by a script, from the side of the function.
///
/// Arguments are counted from 0. One that does not fit becomes an Error that the
/// script can catch, and ends the function by an exception of the call's own; so
/// what comes back is always good. Errors name "node.move(offset)", or the property
/// that is assigned to.
///
/// Belongs to the stack of the call.
class ScriptCall {
public:
    static constexpr float kMost = std::numeric_limits<float>::max();

    ScriptCall(const ScriptMember& member, QScriptContext& context, QScriptEngine& engine);

    // What it is about.

    /// \throws LogicException the engine has no document
    IDocumentContext& Document() const;
    IScene& Scene() const;
    /// The object whose function was called.
    INode& ThisNode() const;
    IMaterial& ThisMaterial() const;
    /// Whatever that is; null for what is no object of the host, or is gone.
    QObject* ThisObject() const { return m_context.thisObject().toQObject(); }

    // Arguments. A property that is assigned to has one without a name.

    bool Has(int n) const { return !m_context.argument(n).isUndefined(); }
    QScriptValue Argument(int n) const { return m_context.argument(n); }
    QString Label(const char* name = "") const;

    float Float(int n, const char* name = "", float least = -kMost, float most = kMost) const;
    int Integer(int n, const char* name, int least, int most) const;
    QString Text(int n, const char* name = "") const;
    bool Flag(int n, const char* name = "") const;
    /// \return as many as `count`, none infinite
    std::vector<float> Floats(int n, const char* name, std::size_t count) const;
    TVec3<float> Vector(int n, const char* name = "") const;
    ColorF Color(int n, const char* name = "") const;
    INode& Node(int n, const char* name = "") const { return ToNode(Argument(n), Label(name)); }
    std::vector<INode*> Nodes(int n, const char* name = "") const;
    IMaterial& Material(int n, const char* name = "") const;

    /// The Error that an argument is of another type.
    [[noreturn]] void Reject(const QScriptValue& value, const QString& label, const QString& expected) const;

    // Answers.

    /// The same script object for the same object; null for null.
    QScriptValue Wrapped(QObject* pObject) const;
    QScriptValue Number(float number) const;
    QScriptValue Numbers(const float* pNumbers, std::size_t count) const;
    QScriptValue Numbers(const TVec3<float>& vector) const;
    QScriptValue Numbers(const ColorF& color) const;
    QScriptValue Texts(const QStringList& texts) const;
    QScriptValue NewObject() const { return m_engine.newObject(); }

    /// An array of what of(each) answers.
    template <typename List, typename Of>
    QScriptValue Array(const List& list, const Of& of) const
    {
        QScriptValue array = m_engine.newArray();
        quint32 n = 0;
        for (const auto& each : list)
            array.setProperty(n++, of(each));
        return array;
    }

private:
    INode& ToNode(const QScriptValue& value, const QString& label) const;
    template <typename T>
    T& Owned(T& object, const QString& label, const char* kind) const;
    void Require(bool bFits) const;

    const QString m_member;
    QScriptContext& m_context;
    QScriptEngine& m_engine;
};

/// Makes a function or a property of an object of a row, which lives as long as
/// the program.
///
/// No exception gets through it into the engine: those of the library become
/// Errors with the same text.
void AddMember(QScriptEngine& engine, QScriptValue& object, const ScriptMember& member);

/// The same for all rows of a table.
template <std::size_t count>
void AddMembers(QScriptEngine& engine, QScriptValue& object, const ScriptMember (&members)[count])
{
    for (const ScriptMember& member : members)
        AddMember(engine, object, member);
}

} // namespace Host
