#pragma once

#include "lumenta/interfaces/IMaterial.h"

#include <array>
#include <memory>
#include <variant>

namespace Host {

class Change;
class Scene;

/// A material as a table of values. A new one is of light clay, with a weak,
/// broad highlight.
///
/// **Parameters** are texts. Numbers and colours lose nothing of a float: an
/// amount is the shortest text that reads back as it was; a colour is "r g b a",
/// linear; a rectangle is "x y width height", without an exponent, as
/// QVariantToQRectF() reads it (QRectFToQVariant() would turn decimals round);
/// a switch is "true" or "false"; a transformation its number. Where they are
/// set, a colour may also be a QColor or "#rrggbb", which are colours of a
/// screen, not linear; and values may be numbers and bools instead of texts.
///
/// Names: "diffuse", "ambient", "specular", "emissive", "reflection", "filter";
/// "opacity", "shininess", "specularLevel", "emissionLevel", "reflectionLevel",
/// "refractionIndex", "bumpHeight"; "twoSided", "castsShadows",
/// "receivesShadows", "flatShaded". A slot's file is "texture" for the diffuse
/// slot, and "specularTexture", "reflectionTexture", "opacityTexture",
/// "bumpTexture" and "emissionTexture"; the same with "Enabled", "Amount",
/// "Rect", "Transformation", "Repeated" and "Inverted" behind it are the slot's
/// other values. Images are not among the parameters.
///
/// Rectangles are held in floats. An infinite colour is ignored.
class SceneMaterial final : public IMaterial {
    Q_OBJECT

public:
    explicit SceneMaterial(const QString& strName, Scene* pScene = nullptr);
    ~SceneMaterial() override;

    QString GetName() const override { return m_strName; }
    void SetName(const QString& strName) override;
    IScene* GetScene() const override;

    ColorF GetDiffuseColor() const override { return Get<ColorF>(eDiffuse); }
    void SetDiffuseColor(const ColorF& color) override { Set(eDiffuse, color); }
    ColorF GetAmbientColor() const override { return Get<ColorF>(eAmbient); }
    void SetAmbientColor(const ColorF& color) override { Set(eAmbient, color); }
    ColorF GetSpecularColor() const override { return Get<ColorF>(eSpecular); }
    void SetSpecularColor(const ColorF& color) override { Set(eSpecular, color); }
    ColorF GetEmissionColor() const override { return Get<ColorF>(eEmission); }
    void SetEmissionColor(const ColorF& color) override { Set(eEmission, color); }
    ColorF GetReflectionColor() const override { return Get<ColorF>(eReflection); }
    void SetReflectionColor(const ColorF& color) override { Set(eReflection, color); }
    ColorF GetFilterColor() const override { return Get<ColorF>(eFilter); }
    void SetFilterColor(const ColorF& color) override { Set(eFilter, color); }

    float GetOpacity() const override { return Get<float>(eOpacity); }
    void SetOpacity(float opacity) override { Set(eOpacity, opacity); }
    float GetShininess() const override { return Get<float>(eShininess); }
    void SetShininess(float shininess) override { Set(eShininess, shininess); }
    float GetSpecularLevel() const override { return Get<float>(eSpecularLevel); }
    void SetSpecularLevel(float level) override { Set(eSpecularLevel, level); }
    float GetEmissionLevel() const override { return Get<float>(eEmissionLevel); }
    void SetEmissionLevel(float level) override { Set(eEmissionLevel, level); }
    float GetReflectionLevel() const override { return Get<float>(eReflectionLevel); }
    void SetReflectionLevel(float level) override { Set(eReflectionLevel, level); }
    float GetRefractionIndex() const override { return Get<float>(eRefractionIndex); }
    void SetRefractionIndex(float index) override { Set(eRefractionIndex, index); }
    float GetBumpHeight() const override { return Get<float>(eBumpHeight); }
    void SetBumpHeight(float height) override { Set(eBumpHeight, height); }

    bool IsTwoSided() const override { return Get<bool>(eTwoSided); }
    void SetTwoSided(bool bTwoSided) override { Set(eTwoSided, bTwoSided); }
    bool CastsShadows() const override { return Get<bool>(eCastsShadows); }
    void SetCastsShadows(bool bCasts) override { Set(eCastsShadows, bCasts); }
    bool ReceivesShadows() const override { return Get<bool>(eReceivesShadows); }
    void SetReceivesShadows(bool bReceives) override { Set(eReceivesShadows, bReceives); }
    bool IsFlatShaded() const override { return Get<bool>(eFlatShaded); }
    void SetFlatShaded(bool bFlat) override { Set(eFlatShaded, bFlat); }

    IImage* GetImage(eMaterialSlot slot) const override { return m_state.images[slot]; }
    void SetImage(eMaterialSlot slot, IImage* pImage) override;
    QString GetImageFile(eMaterialSlot slot) const override { return Get<QString>(Of(slot, eFile)); }
    void SetImageFile(eMaterialSlot slot, const QString& strFileName) override;
    void LoadImages(IImageManager& manager, const QString& strBaseFolder) override;
    void UnloadImages() override;
    bool IsSlotEnabled(eMaterialSlot slot) const override { return Get<bool>(Of(slot, eEnabled)); }
    void SetSlotEnabled(eMaterialSlot slot, bool bEnabled) override { Set(Of(slot, eEnabled), bEnabled); }
    float GetSlotAmount(eMaterialSlot slot) const override { return Get<float>(Of(slot, eAmount)); }
    void SetSlotAmount(eMaterialSlot slot, float amount) override { Set(Of(slot, eAmount), amount); }
    QRectF GetTextureRect(eMaterialSlot slot) const override;
    void SetTextureRect(eMaterialSlot slot, const QRectF& rect) override;
    eMaterialTextureTransformation GetTextureTransformation(eMaterialSlot slot) const override;
    void SetTextureTransformation(eMaterialSlot slot, eMaterialTextureTransformation transformation) override;
    Matrix2 GetTextureMatrix(eMaterialSlot slot) const override;
    bool IsTextureRepeated(eMaterialSlot slot) const override { return Get<bool>(Of(slot, eRepeated)); }
    void SetTextureRepeated(eMaterialSlot slot, bool bRepeated) override { Set(Of(slot, eRepeated), bRepeated); }
    bool IsTextureInverted(eMaterialSlot slot) const override { return Get<bool>(Of(slot, eInverted)); }
    void SetTextureInverted(eMaterialSlot slot, bool bInverted) override { Set(Of(slot, eInverted), bInverted); }

    QMap<QString, QVariant> GetParameters() const override;
    void SetParameters(const QMap<QString, QVariant>& parameters) override;
    QVariant GetParameter(const QString& strName) const override;
    bool SetParameter(const QString& strName, const QVariant& value) override;

    void CopyFrom(const IMaterial& other) override;
    void Reset() override;
    bool IsEqualTo(const IMaterial& other) const override;
    void BeginUpdate() override { ++m_nUpdates; }
    void EndUpdate() override;

private:
    friend class Scene;

    /// Values of the whole material, then those of each slot.
    enum Index {
        eDiffuse, eAmbient, eSpecular, eEmission, eReflection, eFilter,
        eOpacity, eShininess, eSpecularLevel, eEmissionLevel, eReflectionLevel, eRefractionIndex, eBumpHeight,
        eTwoSided, eCastsShadows, eReceivesShadows, eFlatShaded,
        eFirstOfSlots
    };
    enum IndexInSlot { eFile, eEnabled, eAmount, eRect, eTransformation, eRepeated, eInverted, eIndexInSlotCount };
    static constexpr int kValueCount = eFirstOfSlots + eMaterialSlotCount * eIndexInSlotCount;

    using Rect = std::array<float, 4>;
    using Value = std::variant<ColorF, float, bool, QString, Rect, eMaterialTextureTransformation>;
    struct Parameter {
        QString strName;
        Value initial;
        float least = 0.0f;
        float most = 1.0f;
    };
    using Table = std::array<Parameter, kValueCount>;

    /// All that a picture shows.
    struct State {
        std::array<Value, kValueCount> values;
        QMap<QString, QVariant> others;
        std::array<IImage*, eMaterialSlotCount> images{};
    };
    friend bool operator==(const State& a, const State& b);
    class Update;
    class Reader;

    static Table MakeTable();
    static const Table& Parameters();
    static int Find(const QString& strName);
    static int Of(eMaterialSlot slot, IndexInSlot index) { return eFirstOfSlots + slot * eIndexInSlotCount + index; }
    static State NewState();
    static State StateOf(const IMaterial& material);
    static bool SetIn(State& state, int nIndex, const Value& value);
    static bool SetIn(State& state, const QString& strName, const QVariant& value);
    static QString TextOf(const Value& value);

    template <typename T>
    T Get(int nIndex) const
    {
        return std::get<T>(m_state.values[static_cast<std::size_t>(nIndex)]);
    }
    void Set(int nIndex, const Value& value);

    /// Every change goes through here: calls edit(state), then tells.
    template <typename F>
    void Edit(const F& edit);
    void BeginChange();
    void OnImageDestroyed(QObject* pObject);
    /// The scene lets go of it.
    void Leave();

    QString m_strName;
    Scene* m_pScene;
    State m_state;
    int m_nUpdates = 0;
    bool m_bChanged = false;
    std::unique_ptr<Change> m_pChange; ///< In the scene's batch, from the first change to the end of the update.
};

} // namespace Host
