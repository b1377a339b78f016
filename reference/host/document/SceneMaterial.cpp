#include "reference/host/document/SceneMaterial.h"

#include "lumenta/files/Paths.h"
#include "lumenta/foundation/Conversions.h"
#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IImageManager.h"
#include "lumenta/materials/TextureTransformation.h"
#include "reference/host/Caught.h"
#include "reference/host/Directions.h"
#include "reference/host/document/Scene.h"
#include "reference/host/Studio.h"

#include <QPointer>

#include <algorithm>
#include <cmath>
#include <exception>
#include <limits>
#include <optional>
#include <utility>

namespace Host {

namespace {

constexpr float kUnlimited = std::numeric_limits<float>::max();

/// Names of the slots' files; those of their other values begin with them.
constexpr const char* kFiles[eMaterialSlotCount] = {"texture",        "specularTexture", "reflectionTexture",
                                                    "opacityTexture", "bumpTexture",     "emissionTexture"};

/// The shortest text that reads back as the same float.
QString ShortestText(float number, char format)
{
    for (int nDigits = format == 'f' ? 0 : 6;; ++nDigits) {
        const QString text = QString::number(static_cast<double>(number), format, nDigits);
        if (text.toFloat() == number) return text;
    }
}

enum Kind { eColor, eAmount, eSwitch, eRectangle, eChoice };

std::size_t CountOf(Kind kind)
{
    return kind == eColor || kind == eRectangle ? 4 : 1;
}

QString TextOf(Kind kind, const std::array<float, 4>& numbers)
{
    if (kind == eSwitch) return numbers[0] != 0.0f ? QStringLiteral("true") : QStringLiteral("false");
    QStringList parts;
    for (std::size_t i = 0; i < CountOf(kind); ++i)
        parts.append(ShortestText(numbers[i], kind == eRectangle ? 'f' : 'g'));
    return parts.join(QLatin1Char(' '));
}

QString RangeText(float least, float most)
{
    if (least == -kUnlimited) return QStringLiteral("a number");
    if (most == kUnlimited) return QStringLiteral("a number not below %1").arg(static_cast<double>(least));
    return QStringLiteral("a number from %1 to %2").arg(static_cast<double>(least)).arg(static_cast<double>(most));
}

/// Nothing where the value makes no sense.
std::optional<std::array<float, 4>> Read(Kind kind, const QVariant& value)
{
    const QString text = value.toString();
    if (kind == eSwitch) {
        const bool isOn = QVariantToBool(value);
        const bool isFalse =
            value.userType() != QMetaType::QString || text.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0;
        if (!isOn && !isFalse) return std::nullopt;
        return {{isOn ? 1.0f : 0.0f}};
    }
    if (kind == eColor && (value.userType() == QMetaType::QColor || text.startsWith(QLatin1Char('#')))) {
        const QColor color = value.value<QColor>();
        if (!color.isValid()) return std::nullopt;
        const QRgb pixel = color.rgb(); // clamps extended colours
        return {{LinearFromSrgb(qRed(pixel)), LinearFromSrgb(qGreen(pixel)), LinearFromSrgb(qBlue(pixel)), 1.0f}};
    }
    const QStringList parts = text.split(QLatin1Char(' '));
    if (static_cast<std::size_t>(parts.size()) != CountOf(kind)) return std::nullopt;
    std::array<float, 4> numbers{};
    for (int i = 0; i < parts.size(); ++i) {
        bool isNumber = false;
        numbers[static_cast<std::size_t>(i)] = parts[i].toFloat(&isNumber);
        if (!isNumber) return std::nullopt;
    }
    return numbers;
}

} // namespace

// ---------------------------------------------------------------- the table

struct SceneMaterial::Parameter {
    QString strName;
    Kind kind;
    Numbers initial;
    float least;
    float most;
};

std::array<SceneMaterial::Parameter, SceneMaterial::kCount> SceneMaterial::MakeTable()
{
    constexpr Numbers black{0.0f, 0.0f, 0.0f, 1.0f};
    constexpr Numbers white{1.0f, 1.0f, 1.0f, 1.0f};
    constexpr Numbers off{0.0f};
    constexpr Numbers on{1.0f};
    std::array<Parameter, kCount> table;
    const auto add = [&table](int nIndex, const QString& strName, Kind kind, const Numbers& initial, float least,
                              float most) {
        table[static_cast<std::size_t>(nIndex)] = {strName, kind, initial, least, most};
    };
    const auto addColor = [&](int nIndex, const char* name, const Numbers& initial) {
        add(nIndex, QLatin1String(name), eColor, initial, -kUnlimited, kUnlimited);
    };
    const auto addAmount = [&](int nIndex, const char* name, float initial, float least, float most) {
        add(nIndex, QLatin1String(name), eAmount, {initial}, least, most);
    };
    addColor(eDiffuse, "diffuse", {0.62f, 0.53f, 0.45f, 1.0f});
    addColor(eAmbient, "ambient", black);
    addColor(eSpecular, "specular", white);
    addColor(eEmission, "emissive", black);
    addColor(eReflection, "reflection", white);
    addColor(eFilter, "filter", white);
    addAmount(eOpacity, "opacity", 1.0f, 0.0f, 1.0f);
    addAmount(eShininess, "shininess", 20.0f, 1.0f, 1000.0f);
    addAmount(eSpecularLevel, "specularLevel", 0.04f, 0.0f, 1.0f);
    addAmount(eEmissionLevel, "emissionLevel", 1.0f, 0.0f, kUnlimited);
    addAmount(eReflectionLevel, "reflectionLevel", 0.0f, 0.0f, 1.0f);
    addAmount(eRefractionIndex, "refractionIndex", 1.0f, 1.0f, 4.0f);
    addAmount(eBumpHeight, "bumpHeight", 0.02f, -1.0f, 1.0f);
    add(eTwoSided, QStringLiteral("twoSided"), eSwitch, off, 0.0f, 1.0f);
    add(eCastsShadows, QStringLiteral("castsShadows"), eSwitch, on, 0.0f, 1.0f);
    add(eReceivesShadows, QStringLiteral("receivesShadows"), eSwitch, on, 0.0f, 1.0f);
    add(eFlatShaded, QStringLiteral("flatShaded"), eSwitch, off, 0.0f, 1.0f);
    for (int i = 0; i < eMaterialSlotCount; ++i) {
        const QString name = QString::fromLatin1(kFiles[i]);
        add(Of(i, eEnabled), name + QStringLiteral("Enabled"), eSwitch, on, 0.0f, 1.0f);
        add(Of(i, eSlotAmount), name + QStringLiteral("Amount"), eAmount, on, 0.0f, 1.0f);
        add(Of(i, eRect), name + QStringLiteral("Rect"), eRectangle, {0.0f, 0.0f, 1.0f, 1.0f}, -kUnlimited, kUnlimited);
        add(Of(i, eTransformation), name + QStringLiteral("Transformation"), eChoice, off, -kUnlimited, kUnlimited);
        add(Of(i, eRepeated), name + QStringLiteral("Repeated"), eSwitch, on, 0.0f, 1.0f);
        add(Of(i, eInverted), name + QStringLiteral("Inverted"), eSwitch, off, 0.0f, 1.0f);
    }
    return table;
}

const std::array<SceneMaterial::Parameter, SceneMaterial::kCount>& SceneMaterial::Table()
{
    static const std::array<Parameter, kCount> table = MakeTable();
    return table;
}

SceneMaterial::State SceneMaterial::NewState()
{
    State state;
    std::transform(Table().begin(), Table().end(), state.numbers.begin(),
                   [](const Parameter& parameter) { return parameter.initial; });
    return state;
}

SceneMaterial::State SceneMaterial::StateOf(const IMaterial& material)
{
    State state = NewState();
    const QMap<QString, QVariant> parameters = material.GetParameters();
    for (auto it = parameters.begin(); it != parameters.end(); ++it)
        SetIn(state, it.key(), it.value());
    for (std::size_t i = 0; i < state.images.size(); ++i)
        state.images[i] = material.GetImage(static_cast<eMaterialSlot>(i));
    return state;
}

/// Puts a value into a state, held within its limits.
/// \return false for one that is no number; then the state is as it was
bool SceneMaterial::SetIn(State& state, int nIndex, const Numbers& numbers)
{
    const Parameter& parameter = Table()[static_cast<std::size_t>(nIndex)];
    if (std::any_of(numbers.begin(), numbers.end(), [](float number) { return std::isnan(number); })) return false;
    Numbers& held = state.numbers[static_cast<std::size_t>(nIndex)];
    std::transform(numbers.begin(), numbers.end(), held.begin(),
                   [&](float number) { return std::clamp(number, parameter.least, parameter.most); });
    for (std::size_t i = CountOf(parameter.kind); i < held.size(); ++i)
        held[i] = 0.0f; // and not the least
    const bool isChoice = held[0] >= TT_Identity && held[0] <= TT_MirrorV && held[0] == std::floor(held[0]);
    if (parameter.kind == eChoice && !isChoice) held[0] = TT_Identity;
    return true;
}

/// Another file takes the image out.
void SceneMaterial::SetFileIn(State& state, std::size_t nSlot, const QString& strFileName)
{
    if (state.files[nSlot] != strFileName) state.images[nSlot] = nullptr;
    state.files[nSlot] = strFileName;
}

bool SceneMaterial::SetIn(State& state, const QString& strName, const QVariant& value)
{
    for (std::size_t i = 0; i < state.files.size(); ++i) {
        if (strName == QLatin1String(kFiles[i])) {
            SetFileIn(state, i, value.toString());
            return true;
        }
    }
    const auto found = std::find_if(Table().begin(), Table().end(),
                                    [&](const Parameter& parameter) { return parameter.strName == strName; });
    if (found != Table().end()) {
        const std::optional<Numbers> read = value.isValid() ? Read(found->kind, value) : found->initial;
        return read && SetIn(state, static_cast<int>(found - Table().begin()), *read);
    }
    if (value.isValid())
        state.others[strName] = value;
    else
        state.others.remove(strName);
    return true;
}

QString SceneMaterial::DescribeParameter(const QString& strName)
{
    if (IsFileParameter(strName)) return QStringLiteral("the name of an image file");
    const auto found = std::find_if(Table().begin(), Table().end(),
                                    [&](const Parameter& parameter) { return parameter.strName == strName; });
    if (found == Table().end()) return {};
    switch (found->kind) {
    case eColor:
        return QStringLiteral("a colour, #rrggbb or four numbers 'r g b a'");
    case eAmount:
        return RangeText(found->least, found->most);
    case eSwitch:
        return QStringLiteral("true or false");
    case eRectangle:
        return QStringLiteral("a rectangle of four numbers 'x y width height'");
    case eChoice:
        break;
    }
    return QStringLiteral("a whole number from %1 to %2").arg(int(TT_Identity)).arg(int(TT_MirrorV));
}

QString SceneMaterial::FileParameter(eMaterialSlot slot)
{
    return QLatin1String(kFiles[slot]);
}

bool SceneMaterial::IsFileParameter(const QString& strName)
{
    return std::any_of(std::begin(kFiles), std::end(kFiles),
                       [&](const char* name) { return strName == QLatin1String(name); });
}

// ------------------------------------------------------------------ changes

bool operator==(const SceneMaterial::State& a, const SceneMaterial::State& b)
{
    return a.numbers == b.numbers && a.files == b.files && a.images == b.images && a.others == b.others;
}

/// One operation: at its end `changed` goes out, unless a caller's update is open.
class SceneMaterial::Update {
public:
    explicit Update(SceneMaterial& material)
        : m_material(material)
    {
        ++m_material.m_nUpdates;
    }
    ~Update()
    {
        if (m_pAlive) m_material.CloseUpdate();
    }
    Update(const Update&) = delete;
    Update& operator=(const Update&) = delete;

private:
    SceneMaterial& m_material;
    const QPointer<SceneMaterial> m_pAlive = &m_material; ///< Slots may end the scene, and it with that.
};

SceneMaterial::SceneMaterial(const QString& strName, Scene* pScene)
    : m_strName(strName)
    , m_pScene(pScene)
    , m_state(NewState())
{
}

SceneMaterial::~SceneMaterial()
{
    m_state.images = {}; // nobody is told any more
}

void SceneMaterial::BeginChange(std::optional<Change>& change)
{
    if (m_pScene) change.emplace(m_pScene->m_batch);
}

std::array<ImageLoan, eMaterialSlotCount> SceneMaterial::Leave() noexcept
{
    m_pScene = nullptr;
    m_state.images = {};
    return std::exchange(m_loans, {});
}

void SceneMaterial::BeginUpdate()
{
    ++m_nExplicit;
    ++m_nUpdates;
}

void SceneMaterial::EndUpdate()
{
    if (m_nExplicit == 0)
        throw LogicException(QStringLiteral("IMaterial::EndUpdate() without IMaterial::BeginUpdate()"));
    --m_nExplicit;
    CloseUpdate();
}

void SceneMaterial::CloseUpdate()
{
    if (--m_nUpdates > 0 || !m_bChanged) return;
    m_bChanged = false;
    Tell("changed", [&] { Q_EMIT changed(); });
}

/// edit(state) is called a second time if slots could have changed something,
/// and must not hand over an image that has ended by then.
template <typename F>
void SceneMaterial::Edit(const F& edit)
{
    State wanted = m_state;
    edit(wanted);
    if (wanted == m_state) return;
    std::optional<Change> change;
    BeginChange(change);
    wanted = m_state;
    edit(wanted);
    if (wanted == m_state) return;
    for (IImage* pImage : wanted.images) // before slots can end one
        if (pImage) connect(pImage, &QObject::destroyed, this, &SceneMaterial::OnImageDestroyed, Qt::UniqueConnection);
    const Update update(*this);
    m_bChanged = true;
    if (change) change->Materials();

    std::array<QPointer<IImage>, eMaterialSlotCount> before;
    std::copy(m_state.images.begin(), m_state.images.end(), before.begin());
    m_state = wanted;
    const QPointer<SceneMaterial> self = this;
    for (std::size_t i = 0; self && i < before.size(); ++i) {
        if (before[i] && before[i] != wanted.images[i])
            Tell("imageUnload", [&] { Q_EMIT imageUnload(static_cast<eMaterialSlot>(i), before[i]); });
    }
    for (std::size_t i = 0; self && i < before.size(); ++i) {
        IImage* const pImage = m_state.images[i];
        if (pImage && pImage == wanted.images[i] && before[i] != pImage)
            Tell("imageLoad", [&] { Q_EMIT imageLoad(static_cast<eMaterialSlot>(i), pImage); });
    }
    if (self) ReturnLoans();
}

/// Of images that have left their slots.
void SceneMaterial::ReturnLoans()
{
    std::array<ImageLoan, eMaterialSlotCount> returned; // at the end, when the slots can be asked again
    for (std::size_t i = 0; i < returned.size(); ++i)
        if (m_loans[i].Image() != m_state.images[i]) returned[i] = std::move(m_loans[i]);
}

/// Returns it where slots have put something else there meanwhile.
void SceneMaterial::KeepLoan(std::size_t nSlot, ImageLoan loan)
{
    if (loan.Image() && loan.Image() == m_state.images[nSlot]) std::swap(m_loans[nSlot], loan);
}

ColorF SceneMaterial::Color(int nIndex) const
{
    const Numbers& numbers = m_state.numbers[static_cast<std::size_t>(nIndex)];
    return {numbers[0], numbers[1], numbers[2], numbers[3]};
}

void SceneMaterial::Set(int nIndex, const Numbers& numbers)
{
    Edit([&](State& state) { SetIn(state, nIndex, numbers); });
}

void SceneMaterial::OnImageDestroyed(QObject* pObject)
{
    const auto isGone = [pObject](const IImage* pImage) {
        return pImage && static_cast<const QObject*>(pImage) == pObject;
    };
    if (std::none_of(m_state.images.begin(), m_state.images.end(), isGone)) return;
    std::replace_if(m_state.images.begin(), m_state.images.end(), isGone, nullptr); // before slots could ask it
    Tell("destroyed", [this] { // by a destructor, out of which nothing may be thrown
        std::optional<Change> change;
        BeginChange(change);
        const Update update(*this);
        m_bChanged = true;
        if (change) change->Materials();
    });
}

// --------------------------------------------------------------- operations

void SceneMaterial::SetName(const QString& strName)
{
    if (strName == m_strName) return;
    std::optional<Change> change;
    BeginChange(change);
    if (strName == m_strName) return; // a slot was faster
    const Update update(*this);
    m_bChanged = true;
    if (change) change->Materials();
    m_strName = strName;
}

IScene* SceneMaterial::GetScene() const
{
    return m_pScene;
}

void SceneMaterial::SetImage(eMaterialSlot slot, IImage* pImage)
{
    const QPointer<IImage> image = pImage; // slots may end it
    Edit([&](State& state) { state.images[slot] = image; });
}

void SceneMaterial::SetImageFile(eMaterialSlot slot, const QString& strFileName)
{
    Edit([&](State& state) { SetFileIn(state, slot, strFileName); });
}

void SceneMaterial::RenameImageFile(eMaterialSlot slot, const QString& strFileName)
{
    Edit([&](State& state) { state.files[slot] = strFileName; });
}

void SceneMaterial::LoadImages(IImageManager& manager, const QString& strBaseFolder)
{
    std::optional<Bracket> batch;
    if (m_pScene) batch.emplace(m_pScene->m_batch, sSceneModifications{});
    const Update update(*this);
    const QPointer<SceneMaterial> self = this;
    std::exception_ptr failure;
    for (int i = 0; self && i < eMaterialSlotCount; ++i) {
        const auto slot = static_cast<eMaterialSlot>(i);
        if (GetImage(slot) || GetImageFile(slot).isEmpty()) continue;
        try {
            ImageLoan loan(manager, TryToFindFileOptimistic(GetImageFile(slot), strBaseFolder));
            SetImage(slot, loan.Image());
            if (self) KeepLoan(static_cast<std::size_t>(i), std::move(loan));
        } catch (const Exception&) {
            failure = failure ? failure : std::current_exception();
        }
    }
    if (failure) std::rethrow_exception(failure);
}

void SceneMaterial::UnloadImages()
{
    Edit([](State& state) { state.images = {}; });
}

QRectF SceneMaterial::GetTextureRect(eMaterialSlot slot) const
{
    const ColorF rect = Color(Of(slot, eRect));
    return {static_cast<qreal>(rect.r), static_cast<qreal>(rect.g), static_cast<qreal>(rect.b),
            static_cast<qreal>(rect.a)};
}

void SceneMaterial::SetTextureRect(eMaterialSlot slot, const QRectF& rect)
{
    const auto narrow = [](qreal number) { return Narrowed({number, 0.0, 0.0}).x; };
    Set(Of(slot, eRect), {narrow(rect.x()), narrow(rect.y()), narrow(rect.width()), narrow(rect.height())});
}

eMaterialTextureTransformation SceneMaterial::GetTextureTransformation(eMaterialSlot slot) const
{
    return static_cast<eMaterialTextureTransformation>(static_cast<int>(Amount(Of(slot, eTransformation))));
}

void SceneMaterial::SetTextureTransformation(eMaterialSlot slot, eMaterialTextureTransformation transformation)
{
    Set(Of(slot, eTransformation), {static_cast<float>(static_cast<int>(transformation))});
}

Matrix2 SceneMaterial::GetTextureMatrix(eMaterialSlot slot) const
{
    Matrix2 placement(1.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f);
    BuildTextureTransformationMatrix(placement, GetTextureTransformation(slot), GetTextureRect(slot));
    // The identity where it can't be inverted.
    return QTransformToMatrix2(Matrix2ToQTransform(placement).inverted());
}

QMap<QString, QVariant> SceneMaterial::GetParameters() const
{
    QMap<QString, QVariant> parameters = m_state.others;
    for (std::size_t i = 0; i < m_state.files.size(); ++i)
        if (!m_state.files[i].isEmpty()) parameters[QLatin1String(kFiles[i])] = m_state.files[i];
    for (std::size_t i = 0; i < Table().size(); ++i)
        if (m_state.numbers[i] != Table()[i].initial)
            parameters[Table()[i].strName] = TextOf(Table()[i].kind, m_state.numbers[i]);
    return parameters;
}

void SceneMaterial::SetParameters(const QMap<QString, QVariant>& parameters)
{
    Edit([&](State& state) {
        state = NewState();
        for (auto it = parameters.begin(); it != parameters.end(); ++it)
            SetIn(state, it.key(), it.value());
    });
}

QVariant SceneMaterial::GetParameter(const QString& strName) const
{
    for (std::size_t i = 0; i < m_state.files.size(); ++i)
        if (strName == QLatin1String(kFiles[i])) return m_state.files[i];
    for (std::size_t i = 0; i < Table().size(); ++i)
        if (strName == Table()[i].strName) return TextOf(Table()[i].kind, m_state.numbers[i]);
    return m_state.others.value(strName);
}

bool SceneMaterial::SetParameter(const QString& strName, const QVariant& value)
{
    bool makesSense = true;
    Edit([&](State& state) { makesSense = SetIn(state, strName, value); });
    return makesSense;
}

void SceneMaterial::CopyFrom(const IMaterial& other)
{
    std::array<ImageLoan, eMaterialSlotCount> loans;
    if (const auto* const pOther = dynamic_cast<const SceneMaterial*>(&other))
        std::transform(pOther->m_loans.begin(), pOther->m_loans.end(), loans.begin(),
                       [](const ImageLoan& loan) { return loan.Again(); });
    const QPointer<SceneMaterial> self = this;
    Edit([&](State& state) { state = StateOf(other); });
    for (std::size_t i = 0; self && i < loans.size(); ++i)
        KeepLoan(i, std::move(loans[i]));
}

void SceneMaterial::Reset()
{
    Edit([](State& state) { state = NewState(); });
}

bool SceneMaterial::IsEqualTo(const IMaterial& other) const
{
    return m_state == StateOf(other);
}

} // namespace Host
