#include "reference/host/services/SceneSetup.h"

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/foundation/Matrix.h"
#include "lumenta/interfaces/IFreeCamera.h"
#include "lumenta/interfaces/IMaterial.h"
#include "lumenta/interfaces/IScene.h"
#include "lumenta/scene/BoundingBoxes.h"

#include <QFileInfo>

namespace Host {

QStringList LoadSceneImages(IScene& scene, IImageManager& images)
{
    const QString file = scene.GetFileName();
    const QString folder = file.isEmpty() ? QString() : QFileInfo(file).absolutePath();
    const bool bModified = scene.IsModified();
    QStringList missing;
    for (IMaterial* const material : scene.GetMaterials()) {
        QString reason;
        try {
            material->LoadImages(images, folder);
        } catch (const Exception& exception) {
            reason = QStringLiteral(": ") + exception.GetErrorText();
        }
        for (int i = 0; i < eMaterialSlotCount; ++i) {
            const auto slot = static_cast<eMaterialSlot>(i);
            if (!material->GetImage(slot) && !material->GetImageFile(slot).isEmpty())
                missing += QStringLiteral("texture '%1' of the material '%2' could not be had%3")
                               .arg(material->GetImageFile(slot), material->GetName(), reason);
        }
    }
    if (!bModified) scene.SetModified(false);
    missing.removeDuplicates();
    return missing;
}

void ShowAll(IScene& scene)
{
    TBBox<float> box;
    UpdateBBoxRecursive(box, scene.GetRoot(), Matrix());
    IFreeCamera& camera = *scene.GetCamera();
    camera.SetFrameAspect(static_cast<float>(scene.GetRenderSize().width())
                          / static_cast<float>(scene.GetRenderSize().height()));
    // From the front, a little from the right and from above.
    camera.SetAngles(120.0f, 15.0f);
    camera.FrameBox(box);
}

} // namespace Host
