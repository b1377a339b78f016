#pragma once

#include "lumenta/Export.h"
#include "lumenta/foundation/Vector.h"

#include <QPoint>

class IMesh;
class INode;
class IScene;

/// \file
/// Looking into the scene through a pixel of a view.
///
/// Both functions look from the scene's camera: 10,000 units far for meshes and
/// lights, any distance for the ground. A pixel is counted from the upper left
/// corner of the view, whose size is in pixels. Picked are the meshes of visible
/// mesh nodes, from either side of their triangles, and visible lights as balls
/// of their radius, from outside.
/// A hidden node's children are picked where they are visible themselves. Of
/// equally near ones that counts which stands first in the tree.
///
/// Meshes under a singular matrix have no inside to look into and are not
/// picked; nor is anything through a view without a size.
///
/// Boxes are asked first, in floats and over the whole reach, which blurs them
/// by some ten-thousandths of a unit. Things much smaller than a tenth of a unit
/// lose pixels where their outline is that of their box: a cube of a hundredth
/// about one in a hundred, of a thousandth about one in eleven.
///
/// Linear in the number of nodes, and in the triangles of those meshes whose
/// boxes the ray meets. To be called on the scene's thread; no stack is used up,
/// however deep the tree. What the scene throws passes through, and so does
/// std::bad_alloc; nothing else is thrown.

/// The nearest node and the mesh of it that is hit. A light comes without a
/// mesh; a miss is null and null, and so is a look that ends by throwing.
LUMENTA_EXPORT void FindNodeByScreenPoint(const QPoint& point, const TVec2<float>& viewSize, IScene& scene,
                                          INode*& pNode, const IMesh*& pMesh);

/// Where in the world that look ends.
///
/// What is picked counts, and where the scene's ground plane is enabled, the
/// plane z = 0: for a miss, and for a hit that lies beyond the ground or is seen
/// from a camera that stands on it.
///
/// \param result written with the hit, then with the point on the ground. With
///               the answer false it keeps what it held, or the hit that the
///               ground was asked instead of, which callers depend on.
/// \return whether `result` is that point; false also where the ground was asked
///         and is not ahead of the camera
LUMENTA_EXPORT bool FindIntersectionByScreenPoint(const QPoint& point, const TVec2<float>& viewSize, IScene& scene,
                                                  TVec3<float>& result);
