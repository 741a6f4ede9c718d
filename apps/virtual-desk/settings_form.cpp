// SPDX-License-Identifier: MIT
#include "virtual-desk/settings_form.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <array>
#include <utility>

#include "common/light_setting.h"

namespace VirtualDesk
{

namespace
{

constexpr std::array<std::pair<const char*, const char*>, 12> Titles{
    {{"left", "Left display"},
     {"right", "Right display"},
     {"centre", "Centre display"},
     {"blue", "Desk light is blue"},
     {"desk", "Desk light"},
     {"vent", "Vent light"},
     {"work-on", "Work light on"},
     {"work", "Work light"},
     {"drawer-on", "Drawer light on"},
     {"drawer", "Drawer light"},
     {"leds", "LEDs"},
     {"lcds", "Small displays"}}};

QString GetTitle(const std::string& name)
{
    for (const auto& [known, title] : Titles)
        if (name == known)
            return QString::fromLatin1(title);
    return QString::fromStdString(name);
}

bool IsSwitch(const std::string& value)
{
    return value == "on" || value == "off";
}

} // namespace

SettingsForm::SettingsForm(PendingLines& lines, QWidget* parent) : QWidget(parent), m_lines(lines)
{
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* const form = new QFormLayout;
    form->setVerticalSpacing(4);
    form->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    for (const auto& [name, value] : Tools::DescribeLightSettings(Standalone::GetLightSettings()))
        if (IsSwitch(value))
            AddSwitch(*form, name);
        else
            AddLevel(*form, name);
    layout->addLayout(form);

    auto* const apply = new QPushButton("Apply &at once", this);
    apply->setObjectName("applySettings");
    apply->setToolTip("Tell the application that the settings have changed: lights jump");
    connect(apply, &QPushButton::clicked, this, [this] { m_lines.Do(QString("light apply")); });
    auto* const fade = new QPushButton("Fa&de", this);
    fade->setObjectName("fadeSettings");
    fade->setAccessibleName("Fade to the settings");
    fade->setToolTip("Tell the application that the settings have changed: lights fade");
    connect(fade, &QPushButton::clicked, this, [this] { m_lines.Do(QString("light change")); });
    auto* const buttons = new QHBoxLayout;
    buttons->addWidget(apply);
    buttons->addWidget(fade);
    buttons->addStretch();
    layout->addLayout(buttons);
}

void SettingsForm::AddLevel(QFormLayout& form, const std::string& name)
{
    constexpr double MostPercent = 100;
    auto* const editor = new QDoubleSpinBox(this);
    editor->setObjectName("setting " + QString::fromStdString(name));
    editor->setAccessibleName("Setting: " + GetTitle(name));
    editor->setRange(0, MostPercent);
    editor->setDecimals(1);
    editor->setSingleStep(5);
    editor->setSuffix(" %");
    editor->setKeyboardTracking(false);
    connect(editor, &QDoubleSpinBox::valueChanged, this,
            [this, name](double value) { Send(name, ToNumber(value)); });
    form.addRow(GetTitle(name), editor);
    m_levels[name] = editor;
}

void SettingsForm::AddSwitch(QFormLayout& form, const std::string& name)
{
    auto* const editor = new QCheckBox(GetTitle(name), this);
    editor->setObjectName("setting " + QString::fromStdString(name));
    editor->setAccessibleName("Setting: " + GetTitle(name));
    connect(editor, &QCheckBox::toggled, this,
            [this, name](bool on) { Send(name, on ? "on" : "off"); });
    form.addRow(QString(), editor);
    m_switches[name] = editor;
}

void SettingsForm::Send(const std::string& name, const QString& value)
{
    m_shown.reset();
    m_lines.Do("setting " + QString::fromStdString(name) + '=' + value);
}

void SettingsForm::Refresh()
{
    // While a change is under way the editors are ahead of the settings.
    if (!m_lines.IsEmpty())
        return;
    const Standalone::LightSettings settings = Standalone::GetLightSettings();
    if (m_shown == settings)
        return;
    m_shown = settings;
    for (const auto& [name, value] : Tools::DescribeLightSettings(settings))
        Show(name, value);
}

void SettingsForm::Show(const std::string& name, const std::string& value)
{
    if (const auto found = m_levels.find(name); found != m_levels.end()) {
        const QSignalBlocker quiet(found->second);
        found->second->setValue(QString::fromStdString(value).toDouble());
    }
    if (const auto found = m_switches.find(name); found != m_switches.end()) {
        const QSignalBlocker quiet(found->second);
        found->second->setChecked(value == "on");
    }
}

} // namespace VirtualDesk
