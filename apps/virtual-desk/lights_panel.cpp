// SPDX-License-Identifier: MIT
#include "virtual-desk/lights_panel.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "virtual-desk/panel_parts.h"

namespace VirtualDesk
{

namespace
{

constexpr int StatusMargin = 8;

} // namespace

LightsPanel::LightsPanel(DeskController& desk, QWidget* parent)
    : QWidget(parent), m_desk(desk), m_lines(desk), m_lights(new LightList(m_lines, this)),
      m_settings(new SettingsForm(m_lines, this)),
      m_networks(new NetworksView(desk, m_lines, this)), m_status(MakeProblemLabel("lightsStatus"))
{
    setObjectName("lights");
    auto* const left = new QVBoxLayout;
    left->addWidget(MakeGroup("Displays", MakeDisplays()));
    left->addWidget(MakeGroup("Lights", m_lights));
    left->addStretch();
    auto* const middle = new QVBoxLayout;
    middle->addWidget(MakeGroup("Console", MakeActions()));
    middle->addWidget(MakeGroup("Settings", m_settings));
    middle->addStretch();
    auto* const right = new QVBoxLayout;
    right->addWidget(MakeGroup("Networks", m_networks));
    right->addWidget(MakeGroup("Serial panels", MakeSerialViews()));
    right->addStretch();

    auto* const content = new QWidget;
    auto* const columns = new QHBoxLayout(content);
    columns->addLayout(left, 3);
    columns->addLayout(middle, 1);
    columns->addLayout(right, 2);
    m_status->setAccessibleName("What went wrong with the lights last");
    m_status->setMargin(StatusMargin);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(MakeScrollArea(content));
    layout->addWidget(m_status);

    connect(&m_lines, &PendingLines::done, this, &LightsPanel::ShowOutcome);
    connect(&m_desk, &DeskController::refreshed, this, &LightsPanel::Refresh);
    Refresh();
}

QWidget* LightsPanel::MakeDisplays()
{
    auto* const displays = new QWidget(this);
    auto* const row = new QHBoxLayout(displays);
    row->setContentsMargins(0, 0, 0, 0);
    // The desk tells of the left, the right and the centre one, which stand otherwise.
    constexpr std::array<std::size_t, 3> Places{0, 2, 1};
    constexpr std::array<const char*, 3> Names{"left", "right", "centre"};
    for (const std::size_t place : Places) {
        auto* const view = new DisplayView(Names.at(place), displays);
        view->setObjectName(QString("display ") + Names.at(place));
        row->addWidget(view);
        view->SetDimmed(m_desk.GetDesk().GetDimmedDisplays().at(place));
        m_displays.at(place) = view;
    }
    return displays;
}

QPushButton* LightsPanel::MakeAction(const QString& name, const QString& text, const QString& line)
{
    auto* const button = new QPushButton(text, this);
    button->setObjectName(name);
    connect(button, &QPushButton::clicked, this, [this, line] { m_lines.Do(line); });
    return button;
}

QWidget* LightsPanel::MakeActions()
{
    m_screenSaver = new QPushButton(this);
    m_screenSaver->setObjectName("screenSaver");
    m_screenSaver->setCheckable(true);
    connect(m_screenSaver, &QPushButton::clicked, this, [this](bool on) {
        m_lines.Do(QString(on ? "light sleep" : "light wake"));
        ShowScreenSaver();
    });

    auto* const actions = new QWidget(this);
    auto* const grid = new QGridLayout(actions);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->addWidget(m_screenSaver, 0, 0, 1, 2);
    grid->addWidget(MakeAction("workLightKey", "Work-light &key", "light key"), 1, 0, 1, 2);
    grid->addWidget(MakeAction("openDrawer", "O&pen drawer", "light open"), 2, 0);
    grid->addWidget(MakeAction("closeDrawer", "&Close drawer", "light close"), 2, 1);
    grid->addWidget(MakeAction("consoleStart", "Console &starts", "light start"), 3, 0);
    grid->addWidget(MakeAction("consoleEnd", "Console &ends", "light end"), 3, 1);
    return actions;
}

QWidget* LightsPanel::MakeSerialViews()
{
    auto* const views = new QWidget(this);
    auto* const layout = new QVBoxLayout(views);
    layout->setContentsMargins(0, 0, 0, 0);
    for (const Desk::SerialLineData& line : m_desk.GetDesk().GetData().serialLines) {
        if (!m_desk.GetDesk().FindPanel(line.device))
            continue;
        m_serialViews.push_back(new SerialView(m_desk, line.device, views));
        layout->addWidget(m_serialViews.back());
    }
    if (m_serialViews.empty())
        layout->addWidget(new QLabel("No panel stands at a serial line.", views));
    return views;
}

void LightsPanel::Refresh()
{
    m_lights->Refresh();
    m_settings->Refresh();
    m_networks->Refresh();
    for (SerialView* const view : m_serialViews)
        view->Refresh();
    RefreshDisplays();
    if (m_lines.IsEmpty())
        m_screenSaver->setChecked(m_desk.GetSession().IsScreenSaverOn());
    ShowScreenSaver();
}

void LightsPanel::RefreshDisplays()
{
    const std::array<double, 3> levels = m_desk.GetDesk().GetDisplays();
    for (std::size_t i = 0; i < levels.size(); ++i)
        m_displays.at(i)->SetBrightness(levels.at(i));
}

void LightsPanel::ShowScreenSaver()
{
    m_screenSaver->setText(m_screenSaver->isChecked() ? "Screen save&r: on" : "Screen save&r: off");
}

void LightsPanel::ShowOutcome(const QString& line, const QString& error)
{
    m_status->setVisible(!error.isEmpty());
    m_status->setText(error.isEmpty() ? QString() : line + ": " + error);
}

} // namespace VirtualDesk
