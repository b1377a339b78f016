#include "reference/desk/PropertyForm.h"

#include "lumenta/interfaces/IUserInterface.h"
#include "reference/desk/FileField.h"
#include "reference/desk/Guarded.h"
#include "reference/desk/ScreenColor.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>

namespace Host {

PropertyForm::PropertyForm(IUserInterface& ui, QWidget* pParent)
    : QWidget(pParent)
    , m_ui(ui)
    , m_pLayout(new QFormLayout(this))
{
    m_pLayout->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
}

void PropertyForm::AddHeading(const QString& title)
{
    auto* const pLabel = new QLabel(QStringLiteral("<b>%1</b>").arg(title.toHtmlEscaped()));
    m_pLayout->addRow(pLabel);
}

void PropertyForm::AddText(const QString& title, const Value<QString>& value)
{
    auto* const pLine = new QLineEdit;
    AddRow<QLineEdit>(title, pLine, [value](QLineEdit& line) { line.setText(value.get()); });
    connect(pLine, &QLineEdit::editingFinished, this, [this, pLine, value] {
        const QString typed = pLine->text();
        pLine->setText(value.get()); // a message would end the editing once more
        if (typed != value.get()) Apply([&] { value.set(typed); });
    });
}

void PropertyForm::AddSwitch(const QString& title, const Value<bool>& value)
{
    auto* const pBox = new QCheckBox;
    AddRow<QCheckBox>(title, pBox, [value](QCheckBox& box) { box.setChecked(value.get()); });
    connect(pBox, &QCheckBox::toggled, this, [this, value](bool bOn) { Apply([&] { value.set(bOn); }); });
}

void PropertyForm::AddNumber(const QString& title, int least, int most, const Value<int>& value)
{
    auto* const pBox = new QSpinBox;
    pBox->setRange(least, most);
    pBox->setKeyboardTracking(false);
    AddRow<QSpinBox>(title, pBox, [value](QSpinBox& box) { box.setValue(value.get()); });
    connect(pBox, QOverload<int>::of(&QSpinBox::valueChanged), this,
            [this, value](int number) { Apply([&] { value.set(number); }); });
}

void PropertyForm::AddAmount(const QString& title, double least, double most, const Value<double>& value)
{
    auto* const pBox = new QDoubleSpinBox;
    pBox->setDecimals(3);
    pBox->setRange(least, most);
    pBox->setStepType(QAbstractSpinBox::AdaptiveDecimalStepType); // a radius has no usual size
    pBox->setKeyboardTracking(false);
    AddRow<QDoubleSpinBox>(title, pBox, [value](QDoubleSpinBox& box) { box.setValue(value.get()); });
    connect(pBox, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
            [this, value](double amount) { Apply([&] { value.set(amount); }); });
}

void PropertyForm::AddColor(const QString& title, const Value<ColorF>& value)
{
    auto* const pButton = new QPushButton;
    pButton->setIconSize({40, 14});
    pButton->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    AddRow<QPushButton>(title, pButton, [value](QPushButton& button) {
        QPixmap swatch(button.iconSize());
        swatch.fill(ScreenColor(value.get()));
        button.setIcon(swatch);
    });
    connect(pButton, &QPushButton::clicked, this, [this, value] {
        Apply([&] {
            ColorF color = value.get();
            if (m_ui.AskColor(color)) value.set(color);
        });
    });
}

void PropertyForm::AddChoice(const QString& title, const QStringList& choices, const std::function<void(int)>& choose)
{
    auto* const pBox = new QComboBox;
    pBox->addItems(choices);
    AddRow<QComboBox>(title, pBox, [](QComboBox& box) { box.setCurrentIndex(-1); });
    connect(pBox, QOverload<int>::of(&QComboBox::activated), this,
            [this, choose](int nChoice) { Apply([&] { choose(nChoice); }); });
}

void PropertyForm::AddFile(const QString& title, std::unique_ptr<IFileSource> source, const Value<QString>& value,
                           const std::function<QString(const QString& path)>& shown)
{
    auto* const pField = new FileField(std::move(source), m_ui);
    AddRow<FileField>(title, pField, [value, shown](FileField& field) {
        const QString path = value.get();
        field.SetFile(shown(path), path);
    });
    connect(pField, &FileField::fileChosen, this,
            [this, value](const QString& path) { Apply([&] { value.set(path); }); });
}

void PropertyForm::AddWidget(QWidget* pWidget)
{
    m_pLayout->addRow(pWidget);
}

void PropertyForm::Refresh()
{
    for (const std::function<void()>& row : m_rows)
        row();
}

template <typename Widget>
void PropertyForm::AddRow(const QString& title, Widget* pWidget, const std::function<void(Widget&)>& show)
{
    pWidget->setObjectName(title);
    m_pLayout->addRow(title, pWidget);
    m_rows.push_back([pWidget, show] {
        const QSignalBlocker quiet(pWidget);
        show(*pWidget);
    });
    m_rows.back()();
}

void PropertyForm::Apply(const std::function<void()>& work)
{
    const QPointer<PropertyForm> pThis = this; // a dialog may outlast it
    Guarded(m_ui, work);
    if (pThis) Refresh();
}

} // namespace Host
