// Types of public headers to which no exported function leads, or only through a
// container of Qt: whoever compares binary contracts starts at exported symbols.
#include "lumenta/interfaces/IGenerator.h"
#include "lumenta/interfaces/IImageManager.h"
#include "lumenta/interfaces/ILightNode.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/interfaces/IModelLoader.h"
#include "lumenta/interfaces/INode.h"
#include "lumenta/interfaces/IPlugin.h"
#include "lumenta/interfaces/IScene.h"
#include "lumenta/interfaces/IUserInterface.h"
#include "lumenta/platform/IApplicationContext.h"
#include "lumenta/platform/IDocumentContext.h"
#include "lumenta/platform/IModelFormats.h"
#include "lumenta/platform/IScriptRunner.h"
#include "lumenta/platform/IScriptRunnerOutput.h"
#include "lumenta/platform/ISerializersRegistry.h"

LUMENTA_EXPORT void Reach(IApplicationContext*, IDocumentContext*, ILightNode*, IMeshNode*, IModelFormats*,
    IScriptRunner*, IScriptRunnerOutput*, ISerializersRegistry*);
LUMENTA_EXPORT void Reach(ImageLoaderInfo*, ModelFormatInfo*, SerializerInfo*, sAnimationInfo*, sGeneratorParameter*,
    sGeneratorPreset*, sModelMaterial*, sServiceInfo*, eFileDialogKind, eNodeType);

void Reach(IApplicationContext*, IDocumentContext*, ILightNode*, IMeshNode*, IModelFormats*,
    IScriptRunner*, IScriptRunnerOutput*, ISerializersRegistry*)
{
}

void Reach(ImageLoaderInfo*, ModelFormatInfo*, SerializerInfo*, sAnimationInfo*, sGeneratorParameter*,
    sGeneratorPreset*, sModelMaterial*, sServiceInfo*, eFileDialogKind, eNodeType)
{
}
