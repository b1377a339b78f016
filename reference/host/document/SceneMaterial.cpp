#include "reference/host/document/SceneMaterial.h"

#include "lumenta/foundation/Conversions.h"
#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IImageManager.h"
#include "reference/host/Directions.h"
#include "reference/host/Studio.h"
#include "reference/host/document/Scene.h"

#include <QDir>
#include <QFile>
#include <QPointer>

#include <algorithm>
#include <cmath>
#include <exception>
#include <limits>
#include <optional>

namespace Host {

namespace {

constexpr float kUnlimited = std::numeric_limits<float>::max();

/// The shortest text that reads back as the same float.
QString ShortestText(float number, char format)
{
    for (int nDigits = format == 'f' ? 0 : 6;; ++nDigits) {
        const QString text = QString::number(static_cast<double>(number), format, nDigits);
        if (text.toFloat() == number)
            return text;
    }
}

std::optional<float> ReadFloat(const QVariant& value)
{
    bool isNumber = false;
    const float number = value.toFloat(&isNumber);
    return isNumber && !std::isnan(number) ? std::optional<float>(number) : std::nullopt;
}

std::optional<ColorF> ReadColor(const QVariant& value)
{
    const QString text = value.toString();
    if (value.userType() == QMetaType::QColor || text.startsWith(QLatin1Char('#'))) {
        const QColor color = value.value<QColor>();
        if (!color.isValid())
            return std::nullopt;
        const QRgb pixel = color.rgb(); // clamps extended colours
        return ColorF{LinearFromSrgb(qRed(pixel)), LinearFromSrgb(qGreen(pixel)), LinearFromSrgb(qBlue(pixel)), 1.0f};
    }
    const QStringList parts = text.split(QLatin1Char(' '));
    if (parts.size() != 4)
        return std::nullopt;
    float components[4];
    for (int i = 0; i < 4; ++i) {
        const std::optional<float> component = ReadFloat(parts[i]);
        if (!component)
            return std::nullopt;
        components[i] = *component;
    }
    return ColorF{components[0], components[1], components[2], components[3]};
}

/// A file as a document names it: from the document's folder, or beside the
/// document, where both were moved together.
QString ImagePath(const QString& strFileName, const QString& strBaseFolder)
{
    QString path = strFileName;
    path.replace(QLatin1Char('\\'), QLatin1Char('/'));
    const QDir folder(strBaseFolder);
    const QString named = folder.absoluteFilePath(path);
    const QString beside = folder.absoluteFilePath(path.section(QLatin1Char('/'), -1));
    return !QFile::exists(named) && QFile::exists(beside) ? beside : named;
}

/// The placement of the image's unit square that a transformation stands for.
QTransform Placement(eMaterialTextureTransformation transformation, const QRectF& rect)
{
    const qreal x = rect.x();
    const qreal y = rect.y();
    const qreal w = rect.width();
    const qreal h = rect.height();
    switch (transformation) {
    case TT_RotateMinus90:
        return {0.0, -h, w, 0.0, x, y + h};
    case TT_RotatePlus90:
        return {0.0, h, -w, 0.0, x + w, y};
    case TT_Rotate180:
        return {-w, 0.0, 0.0, -h, x + w, y + h};
    case TT_MirrorU:
        return {-w, 0.0, 0.0, h, x + w, y};
    case TT_MirrorV:
        return {w, 0.0, 0.0, -h, x, y + h};
    case TT_Identity:
        break;
    }
    return {w, 0.0, 0.0, h, x, y};
}

} // namespace

// ---------------------------------------------------------------- the table

SceneMaterial::Table SceneMaterial::MakeTable()
{
    constexpr ColorF black{0.0f, 0.0f, 0.0f, 1.0f};
    constexpr ColorF white{1.0f, 1.0f, 1.0f, 1.0f};
    Table table;
    const auto add = [&table](int nIndex, const char* name, const Value& initial, float least = 0.0f,
                              float most = 1.0f) {
        table[static_cast<std::size_t>(nIndex)] = {QLatin1String(name), initial, least, most};
    };
    add(eDiffuse, "diffuse", ColorF{0.62f, 0.53f, 0.45f, 1.0f});
    add(eAmbient, "ambient", black);
    add(eSpecular, "specular", white);
    add(eEmission, "emissive", black);
    add(eReflection, "reflection", white);
    add(eFilter, "filter", white);
    add(eOpacity, "opacity", 1.0f);
    add(eShininess, "shininess", 20.0f, 1.0f, 1000.0f);
    add(eSpecularLevel, "specularLevel", 0.04f);
    add(eEmissionLevel, "emissionLevel", 1.0f, 0.0f, kUnlimited);
    add(eReflectionLevel, "reflectionLevel", 0.0f);
    add(eRefractionIndex, "refractionIndex", 1.0f, 1.0f, 4.0f);
    add(eBumpHeight, "bumpHeight", 0.02f, -1.0f, 1.0f);
    add(eTwoSided, "twoSided", false);
    add(eCastsShadows, "castsShadows", true);
    add(eReceivesShadows, "receivesShadows", true);
    add(eFlatShaded, "flatShaded", false);
    const char* const slots_[] = {"texture",        "specularTexture", "reflectionTexture",
                                  "opacityTexture", "bumpTexture",     "emissionTexture"};
    for (int i = 0; i < eMaterialSlotCount; ++i) {
        const QByteArray name(slots_[i]);
        const auto slot = static_cast<eMaterialSlot>(i);
        add(Of(slot, eFile), name.constData(), QString());
        add(Of(slot, eEnabled), (name + "Enabled").constData(), true);
        add(Of(slot, eAmount), (name + "Amount").constData(), 1.0f);
        add(Of(slot, eRect), (name + "Rect").constData(), Rect{0.0f, 0.0f, 1.0f, 1.0f});
        add(Of(slot, eTransformation), (name + "Transformation").constData(), TT_Identity);
        add(Of(slot, eRepeated), (name + "Repeated").constData(), true);
        add(Of(slot, eInverted), (name + "Inverted").constData(), false);
    }
    return table;
}

const SceneMaterial::Table& SceneMaterial::Parameters()
{
    static const Table table = MakeTable();
    return table;
}

int SceneMaterial::Find(const QString& strName)
{
    const Table& table = Parameters();
    const auto found = std::find_if(table.begin(), table.end(),
                                    [&](const Parameter& parameter) { return parameter.strName == strName; });
    return found == table.end() ? -1 : static_cast<int>(found - table.begin());
}

SceneMaterial::State SceneMaterial::NewState()
{
    State state;
    std::transform(Parameters().begin(), Parameters().end(), state.values.begin(),
                   [](const Parameter& parameter) { return parameter.initial; });
    return state;
}

SceneMaterial::State SceneMaterial::StateOf(const IMaterial& material)
{
    State state = NewState();
    const QMap<QString, QVariant> parameters = material.GetParameters();
    for (auto it = parameters.begin(); it != parameters.end(); ++it)
        SetIn(state, it.key(), it.value());
    for (int i = 0; i < eMaterialSlotCount; ++i)
        state.images[static_cast<std::size_t>(i)] = material.GetImage(static_cast<eMaterialSlot>(i));
    return state;
}

// ------------------------------------------------------------------- values

/// Puts a value into a state, held within its limits. Another file takes the
/// image out.
bool SceneMaterial::SetIn(State& state, int nIndex, const Value& value)
{
    const Parameter& parameter = Parameters()[static_cast<std::size_t>(nIndex)];
    Value& held = state.values[static_cast<std::size_t>(nIndex)];
    if (const float* const pNumber = std::get_if<float>(&value)) {
        if (std::isnan(*pNumber))
            return false;
        held = std::clamp(*pNumber, parameter.least, parameter.most);
        return true;
    }
    const auto isFinite = [](float number) { return std::isfinite(number); };
    if (const ColorF* const pColor = std::get_if<ColorF>(&value))
        if (!isFinite(pColor->r) || !isFinite(pColor->g) || !isFinite(pColor->b) || !isFinite(pColor->a))
            return false;
    if (const Rect* const pRect = std::get_if<Rect>(&value))
        if (!std::all_of(pRect->begin(), pRect->end(), isFinite))
            return false;
    if (std::holds_alternative<QString>(value) && held != value)
        state.images[static_cast<std::size_t>((nIndex - eFirstOfSlots) / eIndexInSlotCount)] = nullptr;
    held = value;
    return true;
}

/// Reads texts and other variants into values of a parameter's type.
class SceneMaterial::Reader {
public:
    explicit Reader(const QVariant& value)
        : m_value(value)
    {
    }

    std::optional<Value> operator()(const ColorF&) const { return As(ReadColor(m_value)); }
    std::optional<Value> operator()(float) const { return As(ReadFloat(m_value)); }
    std::optional<Value> operator()(const QString&) const { return Value(m_value.toString()); }

    std::optional<Value> operator()(bool) const
    {
        const QString text = m_value.toString();
        const bool isText = m_value.userType() == QMetaType::QString;
        if (isText && text.compare(QLatin1String("true"), Qt::CaseInsensitive) != 0
            && text.compare(QLatin1String("false"), Qt::CaseInsensitive) != 0)
            return std::nullopt;
        return Value(QVariantToBool(m_value));
    }

    std::optional<Value> operator()(const Rect&) const
    {
        // Of no rectangle, the width of the default tells it from any other.
        const QRectF none(0.0, 0.0, std::numeric_limits<qreal>::quiet_NaN(), 0.0);
        const QRectF rect = m_value.userType() == QMetaType::QRectF ? m_value.toRectF() : QVariantToQRectF(m_value, none);
        if (std::isnan(rect.width()))
            return std::nullopt;
        return Value(RectFrom(rect));
    }

    std::optional<Value> operator()(eMaterialTextureTransformation) const
    {
        bool isNumber = false;
        const int nNumber = m_value.toInt(&isNumber);
        return isNumber ? std::optional<Value>(TransformationFrom(nNumber)) : std::nullopt;
    }

    static Rect RectFrom(const QRectF& rect)
    {
        const auto narrow = [](qreal number) { return Narrowed({number, 0.0, 0.0}).x; };
        return {narrow(rect.x()), narrow(rect.y()), narrow(rect.width()), narrow(rect.height())};
    }

    static eMaterialTextureTransformation TransformationFrom(int nNumber)
    {
        const bool isOne = nNumber >= TT_Identity && nNumber <= TT_MirrorV;
        return isOne ? static_cast<eMaterialTextureTransformation>(nNumber) : TT_Identity;
    }

private:
    template <typename T>
    static std::optional<Value> As(const std::optional<T>& value)
    {
        return value ? std::optional<Value>(*value) : std::nullopt;
    }

    const QVariant& m_value;
};

bool SceneMaterial::SetIn(State& state, const QString& strName, const QVariant& value)
{
    const int nIndex = Find(strName);
    if (nIndex < 0) {
        if (value.isValid())
            state.others[strName] = value;
        else
            state.others.remove(strName);
        return true;
    }
    const Value& initial = Parameters()[static_cast<std::size_t>(nIndex)].initial;
    const std::optional<Value> read = value.isValid() ? std::visit(Reader(value), initial) : initial;
    return read && SetIn(state, nIndex, *read);
}

QString SceneMaterial::TextOf(const Value& value)
{
    struct Writer {
        QString operator()(const ColorF& color) const
        {
            return QStringList{(*this)(color.r), (*this)(color.g), (*this)(color.b), (*this)(color.a)}.join(
                QLatin1Char(' '));
        }
        QString operator()(float number) const { return ShortestText(number, 'g'); }
        QString operator()(bool isOn) const { return isOn ? QStringLiteral("true") : QStringLiteral("false"); }
        QString operator()(const QString& text) const { return text; }
        QString operator()(const Rect& rect) const
        {
            QStringList parts;
            for (const float number : rect)
                parts.append(ShortestText(number, 'f'));
            return parts.join(QLatin1Char(' '));
        }
        QString operator()(eMaterialTextureTransformation transformation) const
        {
            return QString::number(static_cast<int>(transformation));
        }
    };
    return std::visit(Writer(), value);
}

// ------------------------------------------------------------------ changes

bool operator==(const SceneMaterial::State& a, const SceneMaterial::State& b)
{
    return a.values == b.values && a.others == b.others && a.images == b.images;
}

/// One operation, whether within a caller's update or on its own.
class SceneMaterial::Update {
public:
    explicit Update(SceneMaterial& material)
        : m_material(material)
    {
        m_material.BeginUpdate();
    }
    ~Update() { m_material.EndUpdate(); }
    Update(const Update&) = delete;
    Update& operator=(const Update&) = delete;

private:
    SceneMaterial& m_material;
};

SceneMaterial::SceneMaterial(const QString& strName, Scene* pScene)
    : m_strName(strName)
    , m_pScene(pScene)
    , m_state(NewState())
{
}

SceneMaterial::~SceneMaterial() = default;

void SceneMaterial::BeginChange()
{
    if (m_bChanged)
        return;
    m_bChanged = true;
    if (m_pScene) {
        m_pChange = std::make_unique<Change>(m_pScene->m_batch);
        m_pChange->Materials();
    }
}

void SceneMaterial::EndUpdate()
{
    if (m_nUpdates == 0)
        throw LogicException(QStringLiteral("IMaterial::EndUpdate() without IMaterial::BeginUpdate()"));
    if (--m_nUpdates > 0 || !m_bChanged)
        return;
    m_bChanged = false;
    const std::unique_ptr<Change> change = std::move(m_pChange);
    Q_EMIT changed();
}

template <typename F>
void SceneMaterial::Edit(const F& edit)
{
    State wanted = m_state;
    edit(wanted);
    if (wanted == m_state)
        return;
    const Update update(*this);
    BeginChange();
    wanted = m_state; // slots may have changed it
    edit(wanted);

    std::array<QPointer<IImage>, eMaterialSlotCount> before;
    std::copy(m_state.images.begin(), m_state.images.end(), before.begin());
    m_state = wanted;
    for (std::size_t i = 0; i < before.size(); ++i) {
        if (before[i] && before[i] != wanted.images[i])
            Q_EMIT imageUnload(static_cast<eMaterialSlot>(i), before[i]);
    }
    for (std::size_t i = 0; i < before.size(); ++i) {
        IImage* const pImage = m_state.images[i];
        if (!pImage || pImage != wanted.images[i] || before[i] == pImage)
            continue;
        connect(pImage, &QObject::destroyed, this, &SceneMaterial::OnImageDestroyed, Qt::UniqueConnection);
        Q_EMIT imageLoad(static_cast<eMaterialSlot>(i), pImage);
    }
}

void SceneMaterial::Set(int nIndex, const Value& value)
{
    Edit([&](State& state) { SetIn(state, nIndex, value); });
}

void SceneMaterial::OnImageDestroyed(QObject* pObject)
{
    const auto isGone = [pObject](const IImage* pImage) { return pImage && static_cast<const QObject*>(pImage) == pObject; };
    if (std::none_of(m_state.images.begin(), m_state.images.end(), isGone))
        return;
    const Update update(*this);
    std::replace_if(m_state.images.begin(), m_state.images.end(), isGone, nullptr);
    BeginChange();
}

void SceneMaterial::Leave()
{
    m_pScene = nullptr;
    m_pChange.reset();
}

// --------------------------------------------------------------- operations

void SceneMaterial::SetName(const QString& strName)
{
    if (strName == m_strName)
        return;
    const Update update(*this);
    BeginChange();
    m_strName = strName;
}

IScene* SceneMaterial::GetScene() const
{
    return m_pScene;
}

void SceneMaterial::SetImage(eMaterialSlot slot, IImage* pImage)
{
    Edit([&](State& state) { state.images[slot] = pImage; });
}

void SceneMaterial::SetImageFile(eMaterialSlot slot, const QString& strFileName)
{
    Set(Of(slot, eFile), strFileName);
}

void SceneMaterial::LoadImages(IImageManager& manager, const QString& strBaseFolder)
{
    const Update update(*this);
    std::exception_ptr failure;
    for (int i = 0; i < eMaterialSlotCount; ++i) {
        const auto slot = static_cast<eMaterialSlot>(i);
        if (GetImage(slot) || GetImageFile(slot).isEmpty())
            continue;
        try {
            SetImage(slot, manager.LoadImageFile(ImagePath(GetImageFile(slot), strBaseFolder)));
        } catch (const Exception&) {
            failure = failure ? failure : std::current_exception();
        }
    }
    if (failure)
        std::rethrow_exception(failure);
}

void SceneMaterial::UnloadImages()
{
    Edit([](State& state) { state.images = {}; });
}

QRectF SceneMaterial::GetTextureRect(eMaterialSlot slot) const
{
    const Rect rect = Get<Rect>(Of(slot, eRect));
    return {static_cast<qreal>(rect[0]), static_cast<qreal>(rect[1]), static_cast<qreal>(rect[2]),
            static_cast<qreal>(rect[3])};
}

void SceneMaterial::SetTextureRect(eMaterialSlot slot, const QRectF& rect)
{
    Set(Of(slot, eRect), Reader::RectFrom(rect));
}

eMaterialTextureTransformation SceneMaterial::GetTextureTransformation(eMaterialSlot slot) const
{
    return Get<eMaterialTextureTransformation>(Of(slot, eTransformation));
}

void SceneMaterial::SetTextureTransformation(eMaterialSlot slot, eMaterialTextureTransformation transformation)
{
    Set(Of(slot, eTransformation), Reader::TransformationFrom(static_cast<int>(transformation)));
}

Matrix2 SceneMaterial::GetTextureMatrix(eMaterialSlot slot) const
{
    // The identity where it can't be inverted.
    return QTransformToMatrix2(Placement(GetTextureTransformation(slot), GetTextureRect(slot)).inverted());
}

QMap<QString, QVariant> SceneMaterial::GetParameters() const
{
    QMap<QString, QVariant> parameters = m_state.others;
    for (std::size_t i = 0; i < m_state.values.size(); ++i)
        if (m_state.values[i] != Parameters()[i].initial)
            parameters[Parameters()[i].strName] = TextOf(m_state.values[i]);
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
    const int nIndex = Find(strName);
    return nIndex < 0 ? m_state.others.value(strName) : TextOf(m_state.values[static_cast<std::size_t>(nIndex)]);
}

bool SceneMaterial::SetParameter(const QString& strName, const QVariant& value)
{
    bool makesSense = true;
    Edit([&](State& state) { makesSense = SetIn(state, strName, value); });
    return makesSense;
}

void SceneMaterial::CopyFrom(const IMaterial& other)
{
    Edit([&](State& state) { state = StateOf(other); });
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
