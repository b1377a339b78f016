#include "lumenta/script/ScriptDocument.h"

#include "lumenta/platform/IDocumentContext.h"

#include <QScriptEngine>
#include <QVariant>

IDocumentContext* documentContextFromScriptEngine(QScriptEngine* engine)
{
    if (!engine) return nullptr;
    return qobject_cast<IDocumentContext*>(engine->property("doc-context").value<QObject*>());
}
