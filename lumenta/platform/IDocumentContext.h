#pragma once

#include "lumenta/Export.h"

#include <QObject>

class IScene;
class IScriptRunner;
class IUserInterface;

/// What belongs to one open document.
///
/// **Who implements it:** the host, in a class derived from QObject, which must
/// say `Q_INTERFACES(IDocumentContext)`: without it scripts find no document.
/// **Who calls it:** script bindings, panels. Get it by
/// `qobject_cast<IDocumentContext*>(pObject)`.
/// **Thread:** the document's. **Ownership:** all of it is the host's and lives
/// as long as the document. A host may lack all but the scene: then the answer
/// is null. A host with property panels has a user interface.
class LUMENTA_EXPORT IDocumentContext {
public:
    virtual IScene* GetScene() const = 0;                 ///< Never null.
    virtual IUserInterface* GetUserInterface() const = 0; ///< How to talk to the user of this document.
    virtual IScriptRunner* GetScriptRunner() const = 0;   ///< Runs scripts against this document.

protected:
    IDocumentContext() = default;
    IDocumentContext(const IDocumentContext&) = default;
    IDocumentContext& operator=(const IDocumentContext&) = default;
    ~IDocumentContext() = default; // nobody deletes a document by this side of it
};

Q_DECLARE_INTERFACE(IDocumentContext, "com.quillwright.lumenta.IDocumentContext")
