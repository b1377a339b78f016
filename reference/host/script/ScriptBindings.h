#pragma once

class QScriptEngine;

namespace Host {

/// Gives the engine's scripts their document: the global object `scene`, and all
/// that is reached through it. docs/scripting.md lists it.
///
/// The document is that of documentContextFromScriptEngine(), asked for with
/// each call. Files are written by the document where it is IScriptServices, too.
void AddBindings(QScriptEngine& engine);

/// The parts of that: the prototypes of what is in a scene.
void AddNodePrototype(QScriptEngine& engine);
void AddMaterialPrototype(QScriptEngine& engine);
void AddCameraPrototype(QScriptEngine& engine);

} // namespace Host
