#pragma once

#include "lumenta/interfaces/IMaterial.h"
#include "reference/host/document/Batch.h"
#include "reference/host/document/ImageLoan.h"

#include <array>
#include <optional>

namespace Host {

class Scene;

/// A material as a table of values. A new one is of light clay, with a weak,
/// broad highlight.
///
/// Rectangles are held in floats. What is infinite counts as the greatest float.
///
/// An image that LoadImages() got goes back to its manager when the slot lets go
/// of it, or the material ends. A copy asks for it, too, so that neither takes it
/// from the other; whoever else takes it from the slot only borrows it.
class SceneMaterial final : public IMaterial {
    Q_OBJECT

public:
    explicit SceneMaterial(const QString& strName, Scene* pScene = nullptr);
    ~SceneMaterial() override;

    /// What SetParameter() takes, in words for a person, as in "a number from 0
    /// to 1"; numbers beyond are held within. Empty for a name that is not ours.
    static QString DescribeParameter(const QString& strName);

    /// What the file of a slot is called among the parameters.
    static QString FileParameter(eMaterialSlot slot);
    static bool IsFileParameter(const QString& strName);

    /// Names the same file in another way: the image that is in the slot stays.
    void RenameImageFile(eMaterialSlot slot, const QString& strFileName);

    QString GetName() const override { return m_strName; }
    void SetName(const QString& strName) override;
    IScene* GetScene() const override;

    ColorF GetDiffuseColor() const override { return Color(eDiffuse); }
    void SetDiffuseColor(const ColorF& color) override { SetColor(eDiffuse, color); }
    ColorF GetAmbientColor() const override { return Color(eAmbient); }
    void SetAmbientColor(const ColorF& color) override { SetColor(eAmbient, color); }
    ColorF GetSpecularColor() const override { return Color(eSpecular); }
    void SetSpecularColor(const ColorF& color) override { SetColor(eSpecular, color); }
    ColorF GetEmissionColor() const override { return Color(eEmission); }
    void SetEmissionColor(const ColorF& color) override { SetColor(eEmission, color); }
    ColorF GetReflectionColor() const override { return Color(eReflection); }
    void SetReflectionColor(const ColorF& color) override { SetColor(eReflection, color); }
    ColorF GetFilterColor() const override { return Color(eFilter); }
    void SetFilterColor(const ColorF& color) override { SetColor(eFilter, color); }

    float GetOpacity() const override { return Amount(eOpacity); }
    void SetOpacity(float opacity) override { Set(eOpacity, {opacity}); }
    float GetShininess() const override { return Amount(eShininess); }
    void SetShininess(float shininess) override { Set(eShininess, {shininess}); }
    float GetSpecularLevel() const override { return Amount(eSpecularLevel); }
    void SetSpecularLevel(float level) override { Set(eSpecularLevel, {level}); }
    float GetEmissionLevel() const override { return Amount(eEmissionLevel); }
    void SetEmissionLevel(float level) override { Set(eEmissionLevel, {level}); }
    float GetReflectionLevel() const override { return Amount(eReflectionLevel); }
    void SetReflectionLevel(float level) override { Set(eReflectionLevel, {level}); }
    float GetRefractionIndex() const override { return Amount(eRefractionIndex); }
    void SetRefractionIndex(float index) override { Set(eRefractionIndex, {index}); }
    float GetBumpHeight() const override { return Amount(eBumpHeight); }
    void SetBumpHeight(float height) override { Set(eBumpHeight, {height}); }

    bool IsTwoSided() const override { return IsOn(eTwoSided); }
    void SetTwoSided(bool bTwoSided) override { Switch(eTwoSided, bTwoSided); }
    bool CastsShadows() const override { return IsOn(eCastsShadows); }
    void SetCastsShadows(bool bCasts) override { Switch(eCastsShadows, bCasts); }
    bool ReceivesShadows() const override { return IsOn(eReceivesShadows); }
    void SetReceivesShadows(bool bReceives) override { Switch(eReceivesShadows, bReceives); }
    bool IsFlatShaded() const override { return IsOn(eFlatShaded); }
    void SetFlatShaded(bool bFlat) override { Switch(eFlatShaded, bFlat); }

    IImage* GetImage(eMaterialSlot slot) const override { return m_state.images[slot]; }
    void SetImage(eMaterialSlot slot, IImage* pImage) override;
    QString GetImageFile(eMaterialSlot slot) const override { return m_state.files[slot]; }
    void SetImageFile(eMaterialSlot slot, const QString& strFileName) override;
    void LoadImages(IImageManager& manager, const QString& strBaseFolder) override;
    void UnloadImages() override;
    bool IsSlotEnabled(eMaterialSlot slot) const override { return IsOn(Of(slot, eEnabled)); }
    void SetSlotEnabled(eMaterialSlot slot, bool bEnabled) override { Switch(Of(slot, eEnabled), bEnabled); }
    float GetSlotAmount(eMaterialSlot slot) const override { return Amount(Of(slot, eSlotAmount)); }
    void SetSlotAmount(eMaterialSlot slot, float amount) override { Set(Of(slot, eSlotAmount), {amount}); }
    QRectF GetTextureRect(eMaterialSlot slot) const override;
    void SetTextureRect(eMaterialSlot slot, const QRectF& rect) override;
    eMaterialTextureTransformation GetTextureTransformation(eMaterialSlot slot) const override;
    void SetTextureTransformation(eMaterialSlot slot, eMaterialTextureTransformation transformation) override;
    Matrix2 GetTextureMatrix(eMaterialSlot slot) const override;
    bool IsTextureRepeated(eMaterialSlot slot) const override { return IsOn(Of(slot, eRepeated)); }
    void SetTextureRepeated(eMaterialSlot slot, bool bRepeated) override { Switch(Of(slot, eRepeated), bRepeated); }
    bool IsTextureInverted(eMaterialSlot slot) const override { return IsOn(Of(slot, eInverted)); }
    void SetTextureInverted(eMaterialSlot slot, bool bInverted) override { Switch(Of(slot, eInverted), bInverted); }

    QMap<QString, QVariant> GetParameters() const override;
    void SetParameters(const QMap<QString, QVariant>& parameters) override;
    QVariant GetParameter(const QString& strName) const override;
    bool SetParameter(const QString& strName, const QVariant& value) override;

    void CopyFrom(const IMaterial& other) override;
    void Reset() override;
    bool IsEqualTo(const IMaterial& other) const override;
    void BeginUpdate() override;
    void EndUpdate() override;

private:
    friend class Scene;

    /// Values of the whole material, then those of each slot.
    enum Index {
        eDiffuse,
        eAmbient,
        eSpecular,
        eEmission,
        eReflection,
        eFilter,
        eOpacity,
        eShininess,
        eSpecularLevel,
        eEmissionLevel,
        eReflectionLevel,
        eRefractionIndex,
        eBumpHeight,
        eTwoSided,
        eCastsShadows,
        eReceivesShadows,
        eFlatShaded,
        eFirstOfSlots
    };
    enum IndexInSlot { eEnabled, eSlotAmount, eRect, eTransformation, eRepeated, eInverted, eIndexInSlotCount };
    static constexpr std::size_t kCount = eFirstOfSlots + eMaterialSlotCount * eIndexInSlotCount;
    static constexpr int Of(int nSlot, IndexInSlot index) { return eFirstOfSlots + nSlot * eIndexInSlotCount + index; }

    /// A colour or a rectangle takes all four; anything else the first alone.
    using Numbers = std::array<float, 4>;

    /// All that a picture shows.
    struct State {
        std::array<Numbers, kCount> numbers;
        std::array<QString, eMaterialSlotCount> files;
        std::array<IImage*, eMaterialSlotCount> images{};
        QMap<QString, QVariant> others;
    };
    friend bool operator==(const State& a, const State& b);
    struct Parameter;
    class Update;

    static std::array<Parameter, kCount> MakeTable();
    static const std::array<Parameter, kCount>& Table();
    static State NewState();
    static State StateOf(const IMaterial& material);
    static bool SetIn(State& state, int nIndex, const Numbers& numbers);
    static void SetFileIn(State& state, std::size_t nSlot, const QString& strFileName);
    static bool SetIn(State& state, const QString& strName, const QVariant& value);

    ColorF Color(int nIndex) const;
    float Amount(int nIndex) const { return m_state.numbers[static_cast<std::size_t>(nIndex)][0]; }
    bool IsOn(int nIndex) const { return Amount(nIndex) != 0.0f; }
    void SetColor(int nIndex, const ColorF& color) { Set(nIndex, {color.r, color.g, color.b, color.a}); }
    void Switch(int nIndex, bool bOn) { Set(nIndex, {bOn ? 1.0f : 0.0f}); }
    void Set(int nIndex, const Numbers& numbers);

    /// Every change goes through here: calls edit(state), then tells.
    template <typename F>
    void Edit(const F& edit);
    /// In the scene's batch, which holds as long as it lives; nothing without a scene.
    void BeginChange(std::optional<Change>& change);
    void CloseUpdate();
    void ReturnLoans();
    void KeepLoan(std::size_t nSlot, ImageLoan loan);
    void OnImageDestroyed(QObject* pObject);
    /// The scene lets go of it, and it of its images: whoever reads the document
    /// again meanwhile is to have them from their files.
    /// \return what it has borrowed; slots hear of its end, and may do anything then
    std::array<ImageLoan, eMaterialSlotCount> Leave() noexcept;

    QString m_strName;
    Scene* m_pScene;
    State m_state;
    std::array<ImageLoan, eMaterialSlotCount> m_loans; ///< Of what is in the slots.
    int m_nUpdates = 0;                                ///< Of callers' brackets and running operations.
    int m_nExplicit = 0;                               ///< Of callers' brackets.
    bool m_bChanged = false;
};

} // namespace Host
