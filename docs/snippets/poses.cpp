#include "docs/snippets/Snippets.h"

#include "lumenta/foundation/Matrix.h"
#include "lumenta/interfaces/IFreeCamera.h"
#include "lumenta/interfaces/IScene.h"
#include "lumenta/scene/BoundingBoxes.h"
#include "lumenta/scene/Picking.h"

//! [poses]
/// What is under a pixel at a moment, if the camera stands where all of it is seen.
INode* PickAt(IScene& scene, int nAnimation, float milliseconds, const QPoint& pixel, const TVec2<float>& viewSize)
{
    scene.SetAnimation(nAnimation, milliseconds); // poses: vertices and boxes are new

    TBBox<float> box;
    UpdateBBoxRecursive(box, scene.GetRoot(), Matrix()); // of what is seen, as it is posed
    scene.GetCamera()->FrameBox(box);

    INode* pNode = nullptr;
    const IMesh* pMesh = nullptr;
    FindNodeByScreenPoint(pixel, viewSize, scene, pNode, pMesh); // looks from that camera
    return pNode;
}
//! [poses]
