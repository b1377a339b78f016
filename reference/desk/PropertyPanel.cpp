#include "reference/desk/PropertyPanel.h"

#include "lumenta/files/Paths.h"
#include "lumenta/interfaces/IGenerator.h"
#include "lumenta/interfaces/IMaterial.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/interfaces/IScene.h"
#include "lumenta/interfaces/IUserInterface.h"
#include "lumenta/platform/IApplicationContext.h"
#include "lumenta/platform/IDocumentContext.h"
#include "lumenta/platform/IFileSource.h"
#include "reference/desk/Guarded.h"
#include "reference/desk/PropertyForm.h"

#include <QFileInfo>
#include <QScrollBar>
#include <QTimer>

#include <algorithm>
#include <limits>
#include <utility>

namespace Host {

namespace {

struct ColorRow {
    const char* title;
    ColorF (IMaterial::*get)() const;
    void (IMaterial::*set)(const ColorF&);
};

struct AmountRow {
    const char* title;
    double least, most;
    float (IMaterial::*get)() const;
    void (IMaterial::*set)(float);
};

struct SwitchRow {
    const char* title;
    bool (IMaterial::*get)() const;
    void (IMaterial::*set)(bool);
};

// clang-format off
const ColorRow kColors[] = {
    {"Colour", &IMaterial::GetDiffuseColor, &IMaterial::SetDiffuseColor},
    {"Ambient", &IMaterial::GetAmbientColor, &IMaterial::SetAmbientColor},
    {"Highlights", &IMaterial::GetSpecularColor, &IMaterial::SetSpecularColor},
    {"Emission", &IMaterial::GetEmissionColor, &IMaterial::SetEmissionColor},
    {"Mirror tint", &IMaterial::GetReflectionColor, &IMaterial::SetReflectionColor},
    {"Filter", &IMaterial::GetFilterColor, &IMaterial::SetFilterColor}};

const AmountRow kAmounts[] = {
    {"Opacity", 0.0, 1.0, &IMaterial::GetOpacity, &IMaterial::SetOpacity},
    {"Shininess", 1.0, 1000.0, &IMaterial::GetShininess, &IMaterial::SetShininess},
    {"Highlight level", 0.0, 1.0, &IMaterial::GetSpecularLevel, &IMaterial::SetSpecularLevel},
    {"Emission level", 0.0, 1000.0, &IMaterial::GetEmissionLevel, &IMaterial::SetEmissionLevel},
    {"Mirror level", 0.0, 1.0, &IMaterial::GetReflectionLevel, &IMaterial::SetReflectionLevel},
    {"Refraction index", 1.0, 4.0, &IMaterial::GetRefractionIndex, &IMaterial::SetRefractionIndex},
    {"Bump height", -1.0, 1.0, &IMaterial::GetBumpHeight, &IMaterial::SetBumpHeight}};

const SwitchRow kSwitches[] = {
    {"Two-sided", &IMaterial::IsTwoSided, &IMaterial::SetTwoSided},
    {"Casts shadows", &IMaterial::CastsShadows, &IMaterial::SetCastsShadows},
    {"Receives shadows", &IMaterial::ReceivesShadows, &IMaterial::SetReceivesShadows},
    {"Facets", &IMaterial::IsFlatShaded, &IMaterial::SetFlatShaded}};
// clang-format on

const char* const kSlots[eMaterialSlotCount] = {"Texture",         "Highlight texture", "Mirror texture",
                                                "Opacity texture", "Bump texture",      "Emission texture"};

QString Title(const char* text)
{
    return QString::fromLatin1(text);
}

/// Asks and changes what may be gone by then.
template <typename T, typename Subject, typename Get, typename Set>
PropertyForm::Value<T> ValueOf(Subject& subject, const Get& get, const Set& set)
{
    const QPointer<Subject> pSubject = &subject;
    return {[=] { return pSubject ? static_cast<T>(get(*pSubject)) : T(); },
            [=](const T& value) {
                if (pSubject) set(*pSubject, value);
            }};
}

template <typename T>
PropertyForm::Value<T> ParameterOf(IGenerator& generator, const QString& name)
{
    return ValueOf<T>(
        generator, [name](const IGenerator& from) { return from.GetValue(name).value<T>(); },
        [name](IGenerator& into, const T& value) {
            QVariant given = QVariant::fromValue(value);
            given.convert(into.GetValue(name).userType());
            into.SetValue(name, given);
        });
}

/// Its type says what it is edited with. A limit that is not given is none.
void AddParameter(PropertyForm& form, IGenerator& generator, const sGeneratorParameter& parameter)
{
    const QString& title = parameter.strTitle;
    const QString& name = parameter.strName;
    const auto limit = [](const QVariant& given, auto otherwise) {
        return given.isValid() ? given.value<decltype(otherwise)>() : otherwise;
    };
    switch (parameter.value.userType()) {
    case QMetaType::Bool:
        return form.AddSwitch(title, ParameterOf<bool>(generator, name));
    case QMetaType::Int:
        return form.AddNumber(title, limit(parameter.least, std::numeric_limits<int>::min()),
                              limit(parameter.most, std::numeric_limits<int>::max()),
                              ParameterOf<int>(generator, name));
    case QMetaType::Float:
    case QMetaType::Double:
        return form.AddAmount(title, limit(parameter.least, -1e6), limit(parameter.most, 1e6),
                              ParameterOf<double>(generator, name));
    default:
        return form.AddText(title, ParameterOf<QString>(generator, name));
    }
}

QString SourceOf(INode& node)
{
    const IMeshNode* const mesh = qobject_cast<IMeshNode*>(&node);
    return mesh ? mesh->GetSource() : QString();
}

} // namespace

PropertyPanel::PropertyPanel(IApplicationContext& application, IDocumentContext& document, QWidget* pParent)
    : QScrollArea(pParent)
    , m_application(application)
    , m_document(document)
    , m_sources(application, document)
{
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    const IScene* const scene = document.GetScene();
    connect(scene, &IScene::afterSceneUpdate, this, &PropertyPanel::ClearIfGone);
    connect(scene, &IScene::nodeChanged, this, [this](const INode* pNode) {
        if (m_pForm && pNode == m_pNode) m_pForm->Refresh();
    });
    connect(scene, &IScene::sceneChanged, this, [this](eSceneChangedFlags what) {
        if (m_pForm && (what & eSceneChangedDocument)) m_pForm->Refresh(); // names of files are relative to its own
    });
}

void PropertyPanel::Clear()
{
    m_pNode.clear();
    m_pMaterial.clear();
    if (!m_pForm) return;
    if (m_pSubject) m_pSubject->disconnect(m_pForm);
    PropertyForm* const pForm = std::exchange(m_pForm, nullptr);
    takeWidget(); // one of its rows may be just calling us, so it ends later
    pForm->setParent(this);
    pForm->deleteLater();
}

void PropertyPanel::ClearIfGone()
{
    if ((m_pNode && !m_pNode->GetScene()) || (m_pMaterial && !m_pMaterial->GetScene())) Clear();
}

PropertyForm& PropertyPanel::Begin(QObject& subject)
{
    Clear();
    m_pSubject = &subject;
    m_pForm = new PropertyForm(*m_document.GetUserInterface());
    connect(&subject, &QObject::destroyed, m_pForm, [this] { Clear(); });
    setWidget(m_pForm);
    QTimer::singleShot(0, m_pForm, [this] { updateGeometry(); }); // once it has its rows
    return *m_pForm;
}

QSize PropertyPanel::minimumSizeHint() const
{
    QSize least = QScrollArea::minimumSizeHint();
    const int nBeside = verticalScrollBar()->sizeHint().width() + 2 * frameWidth();
    if (m_pForm) least.setWidth(std::max(least.width(), m_pForm->minimumSizeHint().width() + nBeside));
    return least;
}

QString PropertyPanel::Folder() const
{
    const QString file = m_document.GetScene()->GetFileName();
    return file.isEmpty() ? QString() : QFileInfo(file).absolutePath();
}

// ------------------------------------------------------------------ materials

void PropertyPanel::ShowMaterial(IMaterial* pMaterial)
{
    if (!pMaterial) return Clear();
    PropertyForm& form = Begin(*pMaterial);
    if (pMaterial->GetScene()) m_pMaterial = pMaterial;
    form.AddText(QStringLiteral("Name"), ValueOf<QString>(
                                             *pMaterial, [](const IMaterial& material) { return material.GetName(); },
                                             [](IMaterial& material, const QString& name) { material.SetName(name); }));
    for (const ColorRow& row : kColors)
        form.AddColor(Title(row.title),
                      ValueOf<ColorF>(
                          *pMaterial, [row](const IMaterial& material) { return (material.*row.get)(); },
                          [row](IMaterial& material, const ColorF& color) { (material.*row.set)(color); }));
    for (const AmountRow& row : kAmounts)
        form.AddAmount(
            Title(row.title), row.least, row.most,
            ValueOf<double>(
                *pMaterial, [row](const IMaterial& material) { return (material.*row.get)(); },
                [row](IMaterial& material, double amount) { (material.*row.set)(static_cast<float>(amount)); }));
    for (const SwitchRow& row : kSwitches)
        form.AddSwitch(Title(row.title),
                       ValueOf<bool>(
                           *pMaterial, [row](const IMaterial& material) { return (material.*row.get)(); },
                           [row](IMaterial& material, bool bOn) { (material.*row.set)(bOn); }));
    if (m_application.GetImageManager()) AddSlots(form, *pMaterial);
    connect(pMaterial, &IMaterial::changed, &form, &PropertyForm::Refresh);
}

void PropertyPanel::AddSlots(PropertyForm& form, IMaterial& material)
{
    for (int i = 0; i < eMaterialSlotCount; ++i) {
        const auto slot = static_cast<eMaterialSlot>(i);
        const auto get = [slot](const IMaterial& from) { return from.GetImageFile(slot); };
        const auto set = [this, slot](IMaterial& into, const QString& path) { SetImage(into, slot, path); };
        form.AddFile(Title(kSlots[i]),
                     std::unique_ptr<IFileSource>(m_sources.CreateFileSource(QStringLiteral("image"))),
                     ValueOf<QString>(material, get, set), [](const QString& path) { return path; });
    }
}

void PropertyPanel::SetImage(IMaterial& material, eMaterialSlot slot, const QString& path)
{
    const QPointer<IMaterial> pMaterial = &material; // slots may end it
    material.SetImageFile(slot, GetRelativePath(Folder(), path));
    if (pMaterial) pMaterial->LoadImages(*m_application.GetImageManager(), Folder());
    if (pMaterial && !path.isEmpty() && !pMaterial->GetImage(slot))
        m_document.GetUserInterface()->ShowWarning(QStringLiteral("There is no image '%1'").arg(path));
}

// ---------------------------------------------------------------------- nodes

void PropertyPanel::ShowNode(INode* pNode)
{
    if (!pNode) return Clear();
    PropertyForm& form = Begin(*pNode);
    m_pNode = pNode;
    form.AddText(QStringLiteral("Name"), ValueOf<QString>(
                                             *pNode, [](const INode& node) { return node.GetName(); },
                                             [](INode& node, const QString& name) { node.SetName(name); }));
    form.AddSwitch(QStringLiteral("Visible"), ValueOf<bool>(
                                                  *pNode, [](const INode& node) { return node.IsVisible(); },
                                                  [](INode& node, bool bVisible) { node.SetVisible(bVisible); }));
    if (!m_application.GetModelFormats()) return;
    form.AddFile(QStringLiteral("Model"),
                 std::unique_ptr<IFileSource>(m_sources.CreateFileSource(QStringLiteral("model"))),
                 ValueOf<QString>(*pNode, SourceOf, [this](INode& node, const QString& path) { SetModel(node, path); }),
                 [this](const QString& path) { return GetRelativePath(Folder(), path); });
}

void PropertyPanel::SetModel(INode& node, const QString& path)
{
    if (path.isEmpty()) return;
    const QString file = BuildFullPath(Folder(), path);
    if (!qobject_cast<IMeshNode*>(&node)) {
        node.CreateMesh(QFileInfo(file).completeBaseName(), file);
        return;
    }
    IScene& scene = *m_document.GetScene();
    const QPointer<INode> pOld = &node; // slots may remove either of them
    const QPointer<INode> pNew = node.GetParent()->CreateMesh(node.GetName(), file);
    if (!pOld || !pOld->GetParent() || !pNew || !pNew->GetScene()) return;
    const std::vector<INode*>& siblings = pOld->GetParent()->GetChildren();
    const auto place = std::find(siblings.begin(), siblings.end(), pOld.data());
    scene.MoveNodes({pNew}, pOld->GetParent(), static_cast<int>(place - siblings.begin()));
    if (pOld) scene.RemoveNodes({pOld});
    if (pNew && pNew->GetScene()) scene.SetSelection({pNew});
}

// ----------------------------------------------------------------- generators

void PropertyPanel::ShowGenerator(IGenerator* pGenerator)
{
    if (!pGenerator) return Clear();
    PropertyForm& form = Begin(*pGenerator);
    std::unique_ptr<QObject> editor(pGenerator->CreateEditor(&form));
    if (auto* const pWidget = qobject_cast<QWidget*>(editor.get())) {
        editor.release();
        return form.AddWidget(pWidget);
    }
    AddParameters(form, *pGenerator);
    connect(pGenerator, &IGenerator::changed, &form, &PropertyForm::Refresh);
}

void PropertyPanel::AddParameters(PropertyForm& form, IGenerator& generator)
{
    const QPointer<IGenerator> pGenerator = &generator;
    const QList<sGeneratorPreset> presets = generator.GetPresets();
    QStringList titles;
    for (const sGeneratorPreset& preset : presets)
        titles += preset.strTitle;
    const auto choose = [pGenerator, presets](int nPreset) {
        const QMap<QString, QVariant>& values = presets[nPreset].values;
        for (auto each = values.begin(); pGenerator && each != values.end(); ++each)
            pGenerator->SetValue(each.key(), each.value());
    };
    if (!titles.isEmpty()) form.AddChoice(QStringLiteral("Preset"), titles, choose);
    const QList<sGeneratorParameter> parameters = generator.GetParameters();
    for (const sGeneratorParameter& parameter : parameters)
        AddParameter(form, generator, parameter);
}

} // namespace Host
