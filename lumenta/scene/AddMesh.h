#pragma once

#include "lumenta/Export.h"

#include <QString>

class IScene;

/// \file
/// Adding an object that a short text names, on the scene's thread.

/// Adds what `strObject` names, two fields with a comma between, under the
/// scene's root:
///
/// | first field | adds |
/// |---|---|
/// | `node.group` | a group, named "Group" whatever the second field says |
/// | `node.light` | a light, named "Light" whatever the second field says |
/// | anything else | a mesh made from it, named by the second field, "_" and a number |
///
/// Callers depend on the fixed names. Both fields of a mesh are trimmed; the two words are not, so that one with a
/// space around it names the source of a mesh. Text of other than two fields
/// adds nothing.
///
/// The number is one more than that of the mesh before it, of any name: the
/// scene's dynamic property "object-creator-next-index" counts them. What the
/// scene throws passes through, and a mesh that could not be made is not counted.
LUMENTA_EXPORT void addMeshToRoot(IScene* pScene, const QString& strObject);

/// Does the same for a text that holds "node.light" anywhere; other texts add
/// nothing. Answers whether the text holds it, not whether something was added.
/// Callers depend on its being so narrow, whatever the name says.
LUMENTA_EXPORT bool tryAddMeshToRoot(IScene* pScene, const QString& strObject);
