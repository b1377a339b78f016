#include "docs/snippets/Snippets.h"

#include "lumenta/interfaces/IMesh.h"
#include "lumenta/interfaces/INode.h"
#include "lumenta/scene/BoundingBoxes.h"
#include "lumenta/scene/Picking.h"

//! [scene]
/// What a tool tip says of a pixel.
QString TellWhatIsUnder(const QPoint& pixel, const TVec2<float>& viewSize, IScene& scene)
{
    INode* pNode = nullptr;
    const IMesh* pMesh = nullptr;
    FindNodeByScreenPoint(pixel, viewSize, scene, pNode, pMesh);
    if (!pNode) return QString();
    const TBBox<float> box = ComputeNodeBBox(pNode);
    const QString mesh = pMesh ? pMesh->GetName() : QStringLiteral("a light");
    return QStringLiteral("%1 (%2), %3 high").arg(pNode->GetName(), mesh).arg(double(box.max.z - box.min.z));
}
//! [scene]
