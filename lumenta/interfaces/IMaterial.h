#pragma once

#include "lumenta/Export.h"
#include "lumenta/foundation/Color.h"
#include "lumenta/foundation/Matrix2.h"
#include "lumenta/interfaces/IImage.h"
#include "lumenta/interfaces/SignalArguments.h"

#include <QMap>
#include <QObject>
#include <QRectF>
#include <QString>
#include <QVariant>

class IImageManager;
class IScene;

/// How a texture lies in its rectangle. A positive angle turns u towards v.
/// Stored as the number; any int may stand here, since documents bring numbers
/// that are none of these.
enum eMaterialTextureTransformation : int {
    TT_Identity = 0,
    TT_RotateMinus90 = 1,
    TT_RotatePlus90 = 2,
    TT_Rotate180 = 3,
    TT_MirrorU = 4,
    TT_MirrorV = 5
};

/// What a surface is made of: colours, amounts, and textures in slots.
///
/// **Who implements it:** the host. **Who calls it:** panels, loaders and savers,
/// renderers, which take from it what they can show.
/// **Thread:** that of its scene, or of whoever made a material without one.
/// **Ownership:** belongs to its scene (IScene::RemoveMaterial() ends it).
/// Images are borrowed: the material keeps the address and forgets an image that
/// is deleted, of which `changed` alone tells.
///
/// Colours are linear, nominally 0 to 1, their alpha unused. Amounts are held
/// within the limits given; a value that is not a number is ignored.
///
/// Every operation that changes something emits `changed`, once; within
/// BeginUpdate() and EndUpdate() it is emitted once, at the end. One that changes
/// nothing emits nothing. In a scene each operation is a batch of the scene's,
/// also within BeginUpdate(), which leaves the scene alone: who wants several to
/// be one batch there brackets them in IScene::BeginUpdate(). An image in a slot is
/// announced by `imageLoad`, after it is there, and by `imageUnload`, while it is still
/// good.
class LUMENTA_EXPORT IMaterial : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~IMaterial() override;

    // Identity.

    /// Shown to people; need not be unique.
    virtual QString GetName() const = 0;
    virtual void SetName(const QString& strName) = 0;

    /// The scene it belongs to; null for one that stands alone.
    virtual IScene* GetScene() const = 0;

    // Colours.

    /// Of the surface in white light.
    virtual ColorF GetDiffuseColor() const = 0;
    virtual void SetDiffuseColor(const ColorF& color) = 0;

    /// Part of its own colour that the surface shows where no light falls.
    virtual ColorF GetAmbientColor() const = 0;
    virtual void SetAmbientColor(const ColorF& color) = 0;

    /// Of highlights.
    virtual ColorF GetSpecularColor() const = 0;
    virtual void SetSpecularColor(const ColorF& color) = 0;

    /// Of the light that the surface gives by itself.
    virtual ColorF GetEmissionColor() const = 0;
    virtual void SetEmissionColor(const ColorF& color) = 0;

    /// Tint of what the surface mirrors.
    virtual ColorF GetReflectionColor() const = 0;
    virtual void SetReflectionColor(const ColorF& color) = 0;

    /// Tint of light that passes through.
    virtual ColorF GetFilterColor() const = 0;
    virtual void SetFilterColor(const ColorF& color) = 0;

    // Amounts.

    /// 0 is clear, 1 opaque.
    virtual float GetOpacity() const = 0;
    virtual void SetOpacity(float opacity) = 0;

    /// The exponent of highlights, 1 to 1000 (Phong, "Illumination for computer
    /// generated pictures", 1975).
    virtual float GetShininess() const = 0;
    virtual void SetShininess(float shininess) = 0;

    /// Strength of highlights, 0 to 1.
    virtual float GetSpecularLevel() const = 0;
    virtual void SetSpecularLevel(float level) = 0;

    /// Factor of the emission colour, not below 0.
    virtual float GetEmissionLevel() const = 0;
    virtual void SetEmissionLevel(float level) = 0;

    /// How much it mirrors seen from straight above, 0 to 1.
    virtual float GetReflectionLevel() const = 0;
    virtual void SetReflectionLevel(float level) = 0;

    /// Makes mirrors stronger at grazing angles, as Fresnel's formulas tell it (Born,
    /// Wolf, "Principles of Optics", 1999, 1.5.2); 1 to 4. At 1 they are alike from
    /// all sides.
    virtual float GetRefractionIndex() const = 0;
    virtual void SetRefractionIndex(float index) = 0;

    /// How high white stands above black in the bump slot, in widths of its
    /// texture; negative presses in. −1 to 1. Bump mapping (Blinn,
    /// "Simulation of wrinkled surfaces", 1978).
    virtual float GetBumpHeight() const = 0;
    virtual void SetBumpHeight(float height) = 0;

    // Switches.

    /// Whether the back of a triangle is seen.
    virtual bool IsTwoSided() const = 0;
    virtual void SetTwoSided(bool bTwoSided) = 0;

    /// Whether the surface throws shadows.
    virtual bool CastsShadows() const = 0;
    virtual void SetCastsShadows(bool bCasts) = 0;

    /// Whether shadows of others are seen on it.
    virtual bool ReceivesShadows() const = 0;
    virtual void SetReceivesShadows(bool bReceives) = 0;

    /// Facets instead of smooth normals.
    virtual bool IsFlatShaded() const = 0;
    virtual void SetFlatShaded(bool bFlat) = 0;

    // Textures. A slot holds the name of an image file, or an image, or both:
    // LoadImages() gets the one from the other. A slot that is none of the
    // enumerators is a mistake of the caller's: a precondition throughout.

    /// Null where none is loaded.
    virtual IImage* GetImage(eMaterialSlot slot) const = 0;

    /// Puts an image into a slot, or takes it out with null. The file name stays.
    virtual void SetImage(eMaterialSlot slot, IImage* pImage) = 0;

    /// As it is stored in documents: with either kind of separator, absolute or
    /// relative to the document.
    virtual QString GetImageFile(eMaterialSlot slot) const = 0;

    /// Takes the image out where the name is another one.
    virtual void SetImageFile(eMaterialSlot slot, const QString& strFileName) = 0;

    /// Loads the image of every slot that names a file and has no image. What it asks
    /// the manager for it gives back, when the image leaves the slot.
    /// \param strBaseFolder of the document
    /// \throws whatever the manager throws, after all other slots were tried
    virtual void LoadImages(IImageManager& manager, const QString& strBaseFolder) = 0;

    /// Takes the images out of all slots; the file names stay.
    virtual void UnloadImages() = 0;

    /// A slot that is switched off counts as one without an image.
    virtual bool IsSlotEnabled(eMaterialSlot slot) const = 0;
    virtual void SetSlotEnabled(eMaterialSlot slot, bool bEnabled) = 0;

    /// How much of the texture is mixed in, 0 to 1.
    virtual float GetSlotAmount(eMaterialSlot slot) const = 0;
    virtual void SetSlotAmount(eMaterialSlot slot, float amount) = 0;

    /// The part of the texture coordinates' plane that the image covers once;
    /// (0, 0, 1, 1) at first.
    virtual QRectF GetTextureRect(eMaterialSlot slot) const = 0;
    virtual void SetTextureRect(eMaterialSlot slot, const QRectF& rect) = 0;

    /// How the image is turned or mirrored within its rectangle.
    virtual eMaterialTextureTransformation GetTextureTransformation(eMaterialSlot slot) const = 0;

    /// \param transformation a number that is none counts as TT_Identity
    virtual void SetTextureTransformation(eMaterialSlot slot, eMaterialTextureTransformation transformation) = 0;

    /// From coordinates of the mesh to coordinates of the image, 0 to 1 over its
    /// width and height: the inverse of the placement that rectangle and
    /// transformation describe. The identity where that one is singular.
    virtual Matrix2 GetTextureMatrix(eMaterialSlot slot) const = 0;

    /// Whether the image repeats beyond its rectangle, or shows nothing there.
    virtual bool IsTextureRepeated(eMaterialSlot slot) const = 0;
    virtual void SetTextureRepeated(eMaterialSlot slot, bool bRepeated) = 0;

    /// Whether black and white change places: gloss for roughness, height for depth.
    virtual bool IsTextureInverted(eMaterialSlot slot) const = 0;
    virtual void SetTextureInverted(eMaterialSlot slot, bool bInverted) = 0;

    // Parameters: everything above as a map, for files and scripts. Images are
    // not among them.
    //
    // - Colours, as texts "r g b a", linear: "diffuse", "ambient", "specular",
    //   "emissive", "reflection", "filter". Where they are set, a QColor or
    //   "#rrggbb" will do, too; those are colours of a screen, not linear.
    // - Amounts, with their limits: "opacity" 0 to 1, "shininess" 1 to 1000,
    //   "specularLevel" 0 to 1, "emissionLevel" from 0, "reflectionLevel" 0 to 1,
    //   "refractionIndex" 1 to 4, "bumpHeight" −1 to 1. The shortest text that
    //   reads back as the same float; where they are set, numbers will do.
    // - Switches, "true" or "false": "twoSided", "castsShadows",
    //   "receivesShadows", "flatShaded". Where they are set, bools will do.
    // - Image files, any text: "texture" for the diffuse slot, "specularTexture",
    //   "reflectionTexture", "opacityTexture", "bumpTexture", "emissionTexture".
    // - The same six with an ending are the slot's other values: "Enabled",
    //   "Repeated", "Inverted" (switches), "Amount" (0 to 1), "Rect" (a text
    //   "x y width height" without exponents, for QVariantToQRectF();
    //   QRectFToQVariant() would turn decimals round), "Transformation" (an
    //   eMaterialTextureTransformation's number).

    /// By name, ordered. Holds every value that differs from that of a new
    /// material, and every parameter of somebody else's that was set.
    virtual QMap<QString, QVariant> GetParameters() const = 0;

    /// Back to a new material, without images, then these, of which those that
    /// SetParameter() would refuse are passed over. The name stays.
    virtual void SetParameters(const QMap<QString, QVariant>& parameters) = 0;

    /// Invalid for a parameter that is neither ours nor was ever set.
    virtual QVariant GetParameter(const QString& strName) const = 0;

    /// Values may be texts, as files have them. A name that is not ours is kept
    /// as it is; an invalid value takes it away.
    /// \return false where the value makes no sense for the parameter; then
    ///         nothing has changed
    virtual bool SetParameter(const QString& strName, const QVariant& value) = 0;

    // All of it.

    /// Everything but name and scene, images included.
    virtual void CopyFrom(const IMaterial& other) = 0;

    /// Back to a new material. The name stays.
    virtual void Reset() = 0;

    /// Whether no picture could tell them apart: compares all but name and scene.
    virtual bool IsEqualTo(const IMaterial& other) const = 0;

    /// Opens a batch, which may hold further ones.
    virtual void BeginUpdate() = 0;

    /// \throws LogicException nothing is open
    virtual void EndUpdate() = 0;

Q_SIGNALS:
    void changed(); ///< Something that GetParameters() or GetName() tells, or an image.
    void imageUnload(eMaterialSlot slot, IImage* pImage); ///< The image has left the slot, and is still good.
    void imageLoad(eMaterialSlot slot, IImage* pImage);   ///< The image is in the slot.
};
