// Leads to every type of the public headers: whoever compares binary contracts
// starts at exported functions and does not look into containers of others. A
// type more is a line more; the test says which one is missing.
#include "lumenta/foundation/BBox.h"
#include "lumenta/foundation/Color.h"
#include "lumenta/foundation/Exceptions.h"
#include "lumenta/foundation/Matrix.h"
#include "lumenta/foundation/Matrix2.h"
#include "lumenta/foundation/MeshVertex.h"
#include "lumenta/foundation/Vector.h"
#include "lumenta/interfaces/IDisplayEvents.h"
#include "lumenta/interfaces/IExporter.h"
#include "lumenta/interfaces/IFreeCamera.h"
#include "lumenta/interfaces/IGenerator.h"
#include "lumenta/interfaces/IImage.h"
#include "lumenta/interfaces/IImageManager.h"
#include "lumenta/interfaces/ILightNode.h"
#include "lumenta/interfaces/ILog.h"
#include "lumenta/interfaces/ILogWriter.h"
#include "lumenta/interfaces/IMaterial.h"
#include "lumenta/interfaces/IMesh.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/interfaces/IModelLoader.h"
#include "lumenta/interfaces/INode.h"
#include "lumenta/interfaces/IPlugin.h"
#include "lumenta/interfaces/IRender.h"
#include "lumenta/interfaces/IScene.h"
#include "lumenta/interfaces/ISceneLoader.h"
#include "lumenta/interfaces/ISceneSaver.h"
#include "lumenta/interfaces/ISettings.h"
#include "lumenta/interfaces/ISnapshot.h"
#include "lumenta/interfaces/ISnapshotManager.h"
#include "lumenta/interfaces/IUploader.h"
#include "lumenta/interfaces/IUserInterface.h"
#include "lumenta/interfaces/SignalArguments.h"
#include "lumenta/materials/MaterialMimeData.h"
#include "lumenta/platform/IApplicationContext.h"
#include "lumenta/platform/IDocumentContext.h"
#include "lumenta/platform/IFileDialog.h"
#include "lumenta/platform/IFileSource.h"
#include "lumenta/platform/IImageSaver.h"
#include "lumenta/platform/IMeshNodeBuilder.h"
#include "lumenta/platform/IModelFormats.h"
#include "lumenta/platform/IPropertyListHelper.h"
#include "lumenta/platform/IScriptRunner.h"
#include "lumenta/platform/IScriptRunnerOutput.h"
#include "lumenta/platform/ISerializersRegistry.h"
#include "lumenta/properties/FileSource.h"
#include "lumenta/properties/ModelSourceImpl.h"
#include "lumenta/properties/PropertyWidgetHelper.h"
#include "lumenta/scene/Ray.h"
#include "lumenta/script/OutputHandlerHolder.h"
#include "lumenta/serializers/ImageHelpers.h"
#include "lumenta/skin/Animation.h"
#include "lumenta/skin/Geometry.h"
#include "lumenta/skin/Node.h"
#include "lumenta/skin/Scene.h"
#include "lumenta/skin/SkinVertex.h"

using namespace SkinAnimation;

LUMENTA_EXPORT void Reach(Animation*) {}
LUMENTA_EXPORT void Reach(AnimationLayer*) {}
LUMENTA_EXPORT void Reach(CastException*) {}
LUMENTA_EXPORT void Reach(ColorF*) {}
LUMENTA_EXPORT void Reach(eBackgroundMode*) {}
LUMENTA_EXPORT void Reach(eCameraView*) {}
LUMENTA_EXPORT void Reach(eFileDialogKind*) {}
LUMENTA_EXPORT void Reach(eLogLevel*) {}
LUMENTA_EXPORT void Reach(eMaterialSlot*) {}
LUMENTA_EXPORT void Reach(eMaterialTextureTransformation*) {}
LUMENTA_EXPORT void Reach(eNodeChangedFlags*) {}
LUMENTA_EXPORT void Reach(eNodeType*) {}
LUMENTA_EXPORT void Reach(eRenderExitCode*) {}
LUMENTA_EXPORT void Reach(eSceneChangedFlags*) {}
LUMENTA_EXPORT void Reach(Exception*) {}
LUMENTA_EXPORT void Reach(ExporterException*) {}
LUMENTA_EXPORT void Reach(FactoryException*) {}
LUMENTA_EXPORT void Reach(FileException*) {}
LUMENTA_EXPORT void Reach(FileSource*) {}
LUMENTA_EXPORT void Reach(Geometry*) {}
LUMENTA_EXPORT void Reach(IApplicationContext*) {}
LUMENTA_EXPORT void Reach(IDisplayEvents*) {}
LUMENTA_EXPORT void Reach(IDocumentContext*) {}
LUMENTA_EXPORT void Reach(IExporter*) {}
LUMENTA_EXPORT void Reach(IFileDialog*) {}
LUMENTA_EXPORT void Reach(IFileSource*) {}
LUMENTA_EXPORT void Reach(IFreeCamera*) {}
LUMENTA_EXPORT void Reach(IGenerator*) {}
LUMENTA_EXPORT void Reach(IImage*) {}
LUMENTA_EXPORT void Reach(IImageManager*) {}
LUMENTA_EXPORT void Reach(IImageSaver*) {}
LUMENTA_EXPORT void Reach(ILightNode*) {}
LUMENTA_EXPORT void Reach(ILog*) {}
LUMENTA_EXPORT void Reach(ILogWriter*) {}
LUMENTA_EXPORT void Reach(ImageFormatException*) {}
LUMENTA_EXPORT void Reach(ImageLoaderInfo*) {}
LUMENTA_EXPORT void Reach(ImageLoadingHelper*) {}
LUMENTA_EXPORT void Reach(ImageSaverInfo*) {}
LUMENTA_EXPORT void Reach(IMaterial*) {}
LUMENTA_EXPORT void Reach(IMesh*) {}
LUMENTA_EXPORT void Reach(IMeshNode*) {}
LUMENTA_EXPORT void Reach(IMeshNodeBuilder*) {}
LUMENTA_EXPORT void Reach(IModelFormats*) {}
LUMENTA_EXPORT void Reach(IModelLoader*) {}
LUMENTA_EXPORT void Reach(INode*) {}
LUMENTA_EXPORT void Reach(InvalidParameterException*) {}
LUMENTA_EXPORT void Reach(IPlugin*) {}
LUMENTA_EXPORT void Reach(IPropertyListHelper*) {}
LUMENTA_EXPORT void Reach(IRender*) {}
LUMENTA_EXPORT void Reach(IScene*) {}
LUMENTA_EXPORT void Reach(ISceneLoader*) {}
LUMENTA_EXPORT void Reach(ISceneSaver*) {}
LUMENTA_EXPORT void Reach(IScriptRunner*) {}
LUMENTA_EXPORT void Reach(IScriptRunnerOutput*) {}
LUMENTA_EXPORT void Reach(ISerializersRegistry*) {}
LUMENTA_EXPORT void Reach(ISettings*) {}
LUMENTA_EXPORT void Reach(ISnapshot*) {}
LUMENTA_EXPORT void Reach(ISnapshotManager*) {}
LUMENTA_EXPORT void Reach(IUploader*) {}
LUMENTA_EXPORT void Reach(IUserInterface*) {}
LUMENTA_EXPORT void Reach(KeyFrame*) {}
LUMENTA_EXPORT void Reach(LoadingException*) {}
LUMENTA_EXPORT void Reach(LogicException*) {}
LUMENTA_EXPORT void Reach(MaterialMimeData*) {}
LUMENTA_EXPORT void Reach(Matrix*) {}
LUMENTA_EXPORT void Reach(Matrix2*) {}
LUMENTA_EXPORT void Reach(MeshVertex*) {}
LUMENTA_EXPORT void Reach(ModelFormatInfo*) {}
LUMENTA_EXPORT void Reach(ModelSourceImpl*) {}
LUMENTA_EXPORT void Reach(Node*) {}
LUMENTA_EXPORT void Reach(NodeTrack*) {}
LUMENTA_EXPORT void Reach(ObjectLoadingException*) {}
LUMENTA_EXPORT void Reach(OutOfMemoryException*) {}
LUMENTA_EXPORT void Reach(OutputHandlerHolder*) {}
LUMENTA_EXPORT void Reach(PropertyWidgetHelper*) {}
LUMENTA_EXPORT void Reach(Quaternion*) {}
LUMENTA_EXPORT void Reach(Ray*) {}
LUMENTA_EXPORT void Reach(sAnimationInfo*) {}
LUMENTA_EXPORT void Reach(SavingException*) {}
LUMENTA_EXPORT void Reach(sCameraState*) {}
LUMENTA_EXPORT void Reach(Scene*) {}
LUMENTA_EXPORT void Reach(SerializerInfo*) {}
LUMENTA_EXPORT void Reach(sGeneratorParameter*) {}
LUMENTA_EXPORT void Reach(sGeneratorPreset*) {}
LUMENTA_EXPORT void Reach(SkinVertex*) {}
LUMENTA_EXPORT void Reach(sModelMaterial*) {}
LUMENTA_EXPORT void Reach(sRenderSettings*) {}
LUMENTA_EXPORT void Reach(sSceneModifications*) {}
LUMENTA_EXPORT void Reach(sServiceInfo*) {}
LUMENTA_EXPORT void Reach(TBBox<float>*) {}
LUMENTA_EXPORT void Reach(TBBox<double>*) {}
LUMENTA_EXPORT void Reach(TVec2<float>*) {}
LUMENTA_EXPORT void Reach(TVec3<float>*) {}
LUMENTA_EXPORT void Reach(UnsupportedFormatException*) {}
