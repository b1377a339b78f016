#pragma once

#include "lumenta/Export.h"
#include "lumenta/foundation/Vector.h"

#include <QImage>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <vector>

namespace SkinAnimation {
struct Scene;
}

/// A format that models can be read from.
struct ModelFormatInfo {
    QString title;          ///< Shown to people.
    QString description;    ///< What a file dialog shows for it.
    QStringList extensions; ///< Without the dot.
};

/// A material as a model's file describes it.
///
/// Parameters, each present only where the file has it: "diffuse", "specular",
/// "ambient" and "emissive" (QColor), "opacity" (double, 1 is opaque),
/// "shininess" (double, the Phong exponent), "twoSided" (bool), and "texture"
/// (QString: a path as the file spells it, or the name of an embedded image).
struct sModelMaterial {
    QString name;                       ///< As the file has it; may be empty.
    QMap<QString, QVariant> parameters; ///< As above.
};

/// Reads model files into skinned, animated scenes.
///
/// **Who implements it:** a plug-in. **Who calls it:** the host: Load(), then
/// the questions, for one file after another.
/// **Thread:** the one that the loader lives in; Load() blocks it, and tells how
/// far it is by `loadingProgress`.
/// **Ownership:** the loader belongs to whoever had the plug-in make it; the
/// scene to whoever takes it. All other answers are good until the next Load().
///
/// A scene comes at rest: every node's matrices are up to date with its local
/// transform. Positions are in the file's unit, right-handed. The corners of a
/// triangle run clockwise as seen from outside: that way round
/// SkinAnimation::Geometry::CollectNormals() makes normals that face outwards.
/// Texture coordinates have their origin top left, as images do. Geometries
/// carry the name and the parameters of their material. Times of keys are
/// milliseconds, whatever the file counts in.
class LUMENTA_EXPORT IModelLoader : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~IModelLoader() override;

    /// What it can read, the same all its life.
    virtual const std::vector<ModelFormatInfo>& GetFormats() const = 0;

    /// How many ticks make a second in files that don't say so, or say 0; 25 at
    /// first.
    /// \param ticksPerSecond positive and finite; anything else is ignored
    virtual void SetDefaultTickRate(double ticksPerSecond) = 0;

    /// Reads a model and lets go of the one before.
    /// \throws FileException    the file is missing or can't be read
    /// \throws LoadingException it makes no sense, or Cancel() was called; the
    ///                          text names the file and what is wrong. Nothing
    ///                          is then loaded.
    virtual void Load(const QString& strFileName) = 0;

    /// Ends a Load() that is under way; for slots of `loadingProgress`. At any
    /// other time nothing happens.
    virtual void Cancel() = 0;

    /// The loaded scene, which the caller owns and deletes. Null where nothing is
    /// loaded, and for the second one who asks.
    virtual SkinAnimation::Scene* TakeScene() = 0;

    /// The axis that points up in the file, of length 1.
    virtual TVec3<float> GetUpAxis() const = 0;

    /// The file's unit, or 0 where the file doesn't say.
    virtual float GetMillimetersPerUnit() const = 0;

    /// In the order of the file; names need not be unique.
    virtual const std::vector<sModelMaterial>& GetMaterials() const = 0;

    /// Names of the images that the file itself holds.
    virtual QStringList GetImageNames() const = 0;

    /// Null for a name that is none of these.
    virtual QImage GetImage(const QString& strName) const = 0;

    /// What the file says about itself: author, program, copyright, ...
    virtual QMap<QString, QVariant> GetMetadata() const = 0;

    /// What could not be taken over, in words for a person.
    virtual QStringList GetWarnings() const = 0;

Q_SIGNALS:
    /// 0 to 100, growing.
    void loadingProgress(int n);
};
