#pragma once

#include "lumenta/foundation/Vector.h"
#include "lumenta/materials/MaterialMimeData.h"

#include <QPoint>
#include <QString>

#include <memory>

class IApplicationContext;
class IDocumentContext;
class IMaterial;
class IUserInterface;

namespace Host {

/// \file
/// What is dragged from and into a scene: materials, images and models.

/// What a drag of the material carries: its parameters, in which the files of
/// images are absolute. Its file in the temporary folder goes with the object;
/// where there is a texture, and the file is that image, it stays.
///
/// Who asks for the file is the toolkit, at the wish of another program: where it
/// can't be written, the user interface tells so and nothing is thrown.
/// \param ui outlives the object
std::unique_ptr<MaterialMimeData> MakeMimeData(const IMaterial& material, IUserInterface& ui);

/// The local file of a drag, or the image of one that stands for a texture; empty
/// where it brings none.
QString DroppedFile(const QMimeData& mime);

/// Whether a scene can use what is dragged: a material of this program, or a file.
bool IsForScene(const QMimeData& mime);

/// Where something falls in a view, in pixels.
struct Fall {
    QPoint point;
    TVec2<float> viewSize;
};

/// Does what a drop into a view asks for. A material, of this program or the file
/// of one, dresses the mesh node that it falls on. So does the texture of an
/// image: the node's material gets it, or a new one where that is the default.
///
/// \return a file that is for others to open; empty where nothing is left to do
/// \throws what reading the files throws
QString DropIntoScene(const QMimeData& mime, const Fall& fall, const IApplicationContext& application,
                      const IDocumentContext& document);

} // namespace Host
