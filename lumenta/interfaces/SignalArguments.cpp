#include "lumenta/interfaces/SignalArguments.h"

#include "lumenta/interfaces/IImage.h"

void RegisterSignalArgumentTypes()
{
    qRegisterMetaType<eNodeChangedFlags>("eNodeChangedFlags");
    qRegisterMetaType<eSceneChangedFlags>("eSceneChangedFlags");
    qRegisterMetaType<eMaterialSlot>("eMaterialSlot");
    qRegisterMetaType<eRenderExitCode>("eRenderExitCode");
    qRegisterMetaType<sSceneModifications>("sSceneModifications");
    qRegisterMetaType<const INode*>("const INode*");
    qRegisterMetaType<const ISnapshot*>("const ISnapshot*");
    qRegisterMetaType<IImage*>("IImage*");
}
