#pragma once

#include "lumenta/Export.h"

class IDocumentContext;
class QScriptEngine;

/// The document that the engine's scripts work on.
///
/// The host puts it into the engine's dynamic property "doc-context", as a
/// QVariant that holds a `QObject*`, or a pointer to a class derived from it, and
/// takes it out before the document goes: the property does not notice. Anything else in there gives null, and so do an
/// engine without the property, a null engine, and an object that does not say
/// `Q_INTERFACES(IDocumentContext)`. On the engine's thread.
LUMENTA_EXPORT IDocumentContext* documentContextFromScriptEngine(QScriptEngine* engine);
