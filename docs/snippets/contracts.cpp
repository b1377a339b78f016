#include "docs/snippets/Snippets.h"

#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/interfaces/IScene.h"
#include "lumenta/scene/NodeHierarchy.h"

//! [contracts]
/// Hides the mesh nodes whose names begin so. Whoever watches the scene hears of
/// one change, however many nodes there are.
int HideMeshNodes(IScene& scene, const QString& prefix)
{
    sSceneModifications planned;
    planned.strTitle = QStringLiteral("Hide '%1'").arg(prefix);
    int nHidden = 0;
    scene.BeginUpdate(planned);
    for (INode* const pNode : CollectAllChildren(scene.GetRoot()->GetChildren())) {
        if (!qobject_cast<IMeshNode*>(pNode) || !pNode->GetName().startsWith(prefix)) continue;
        pNode->SetVisible(false);
        ++nHidden;
    }
    scene.EndUpdate();
    return nHidden;
}
//! [contracts]
