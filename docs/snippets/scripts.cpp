#include "docs/snippets/Snippets.h"

#include "lumenta/interfaces/IMaterial.h"
#include "lumenta/interfaces/IScene.h"
#include "lumenta/platform/IDocumentContext.h"
#include "lumenta/script/ScriptArguments.h"
#include "lumenta/script/ScriptDocument.h"

#include <QScriptContext>
#include <QScriptEngine>

//! [scripts]
/// What a script calls as fade("glass", 0.5).
QScriptValue Fade(QScriptContext* pContext, QScriptEngine* pEngine)
{
    QString name;
    float opacity = 1.0f;
    if (!parseScriptValueToString(pContext->argument(0), QStringLiteral("fade(name)"), pEngine, name)
        || !parseScriptValueToFloat(pContext->argument(1), QStringLiteral("fade(opacity)"), pEngine, 0.0f, 1.0f,
                                    opacity))
        return QScriptValue(); // the script has got its error

    const IDocumentContext* const pDocument = documentContextFromScriptEngine(pEngine);
    IMaterial* const pMaterial = pDocument ? pDocument->GetScene()->FindMaterial(name) : nullptr;
    if (!pMaterial) return pContext->throwError(QStringLiteral("there is no material '%1'").arg(name));
    pMaterial->SetOpacity(opacity);
    return QScriptValue(QScriptValue::UndefinedValue);
}

/// \param document says Q_INTERFACES(IDocumentContext)
void AddFade(QScriptEngine& engine, QObject& document)
{
    engine.setProperty("doc-context", QVariant::fromValue(&document));
    engine.globalObject().setProperty(QStringLiteral("fade"), engine.newFunction(Fade));
}
//! [scripts]
