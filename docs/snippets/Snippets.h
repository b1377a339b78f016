#pragma once

// What the pages of this folder show. tests/docs/snippets_test.cpp runs all of it.

#include "lumenta/foundation/BBox.h"
#include "lumenta/foundation/Matrix.h"

#include <QMimeData>
#include <QPoint>
#include <QSize>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

class IApplicationContext;
class IImage;
class IImageManager;
class IMaterial;
class INode;
class IPropertyListHelper;
class IScene;
class ISerializersRegistry;
class QScriptEngine;

namespace SkinAnimation {
struct Scene;
}

TVec3<float> PointOfWheel(const TVec3<float>& point, const Matrix& wheelOnCar, const Matrix& carInWorld);
bool MoveBack(TVec3<float>& point, const Matrix& matrix);
int HideMeshNodes(IScene& scene, const QString& prefix);
QString ReferenceTo(const QString& texture, const QString& documentFile);
QString FileOf(const QString& reference, const QString& documentFile);
QString Rebased(const QString& reference, const QString& oldDocument, const QString& newDocument);
QStringList OpenScene(const ISerializersRegistry& registry, const QString& fileName, IScene& scene);
void SaveImage(const IImageManager& manager, const IImage& image, const QString& fileName);
bool TakeDrop(const QMimeData& mime, IMaterial& material);
QString TellWhatIsUnder(const QPoint& pixel, const TVec2<float>& viewSize, IScene& scene);
std::optional<float> DistanceTo(const INode& node, const TVec3<float>& from, const TVec3<float>& to);
QSize PictureSize(const QSize& requested, float frameAspect);
QString TimeLeft(unsigned long long finished, unsigned long long current, int nFrames, int nFrame, int nPercent);
void AddFade(QScriptEngine& engine, QObject& document);
TBBox<float> BoxAt(SkinAnimation::Scene& scene, float milliseconds);
bool Browse(IPropertyListHelper& helper, const QString& kind, QObject* pPanel, QString& path);
INode* PickAt(IScene& scene, int nAnimation, float milliseconds, const QPoint& pixel, const TVec2<float>& viewSize);
bool IsSame(float a, float b);
Matrix PlainProduct(const Matrix& a, const Matrix& b);
std::unique_ptr<IImageManager> ImageManagerOf(const QString& file, IApplicationContext& context);
