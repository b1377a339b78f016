#pragma once

#include "lumenta/Export.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QVariant>

/// \file
/// A material as a text: its name, and its parameters by name.
///
///     <?xml version="1.0" ?>
///     <material version="1" name="oak">
///      <parameter name="texture" value="/wood/oak.png"/>
///     </material>
///
/// What parameters there are is the business of who made the material; the
/// library itself knows "texture", the path of an image. Attributes of one
/// element come in any order, from one writing to the next. All functions are
/// reentrant; none depends on the locale.

/// The material's document, in UTF-8, parameters by ascending name.
///
/// Values are written as QVariant::toString() puts them, those that it cannot
/// put into words as empty texts. Throws nothing. Two things are not read back:
/// a material without parameters, which ReadMaterial() refuses, and characters
/// that XML cannot hold (halves of surrogate pairs, U+FFFE, U+FFFF).
LUMENTA_EXPORT QByteArray MaterialToXml(const QString& name, const QMap<QString, QVariant>& parameters);

/// Reads such a document; every value comes as a text, whatever it looks like.
///
/// Throws InvalidParameterException("ReadMaterial", "xml", ...) with, tested in this order:
///
/// | text | where |
/// |---|---|
/// | Can't parse XML material description | it is not well-formed, or passes one of the bounds below |
/// | Invalid material format: bad root node | no element is named "material" |
/// | Unsupported or missing version | its "version" is not the integer 1 |
/// | Invalid material format: can't find 'material.name' | it has no "name" |
/// | Material tag not contain any child tags | nothing is in it |
/// | Invalid material format: unsupported node '%1' | something other than a "parameter" is in it, a comment, say |
/// | Invalid material format: 'parameter' node doesn't have necessary attributes | it lacks "name" or "value" |
/// | Material tag contain double child tags | the map holds an equal value under that name already |
///
/// Callers depend on all of this:
/// - The first element named "material" counts, wherever it stands; others do not.
/// - `parameters` is not cleared. What it holds is overwritten, and takes part
///   in the last test: the same value again is an error, a different one
///   replaces the earlier. Its value is compared with the text, not the text
///   with it: a 1 equals "01" while "1" does not.
/// - Nothing is undone. `name` is assigned before the first parameter is read,
///   and those before a failing one stay in the map.
///
/// Documents may come from strangers. Nothing that one refers to is fetched, and
/// no more is read than a material needs: elements nested 1,000 deep; a document
/// type of 1,000 characters; and, where that declares entities, 20 references
/// in all.
/// Time and memory grow with the document's size; 256 KiB of stack are too little, 512 enough.
LUMENTA_EXPORT void ReadMaterial(const QByteArray& xml, QString& name, QMap<QString, QVariant>& parameters);

/// The parameters of the material in a file; its name is dropped.
/// Throws what ReadAllFile() and ReadMaterial() throw.
LUMENTA_EXPORT QMap<QString, QVariant> GetDefaultMaterial(const QString& fileName);
