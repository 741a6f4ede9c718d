// SPDX-License-Identifier: MIT
#include "virtual-desk/lights_panel.h"

#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QVBoxLayout>
#include <initializer_list>

#include "virtual-desk/panel_parts.h"

namespace VirtualDesk
{

namespace
{

constexpr int StatusMargin = 8;

/// Groups below one another.
QWidget* MakeColumn(std::initializer_list<QWidget*> groups)
{
    auto* const column = new QWidget;
    auto* const layout = new QVBoxLayout(column);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget* const group : groups)
        layout->addWidget(group);
    layout->addStretch();
    return column;
}

} // namespace

LightsPanel::LightsPanel(DeskController& desk, QWidget* parent)
    : QWidget(parent), m_desk(desk), m_lines(desk), m_lights(new LightList(m_lines, this)),
      m_settings(new SettingsForm(m_lines, this)),
      m_networks(new NetworksView(desk, m_lines, this)), m_status(MakeProblemLabel("lightsStatus"))
{
    setObjectName("lights");
    m_columns = {
        MakeColumn({MakeGroup("Displays", MakeDisplays()), MakeGroup("Lights", m_lights)}),
        MakeColumn({MakeGroup("Console", MakeActions()), MakeGroup("Settings", m_settings)}),
        MakeColumn(
            {MakeGroup("Networks", m_networks), MakeGroup("Serial panels", MakeSerialViews())})};
    auto* const content = new QWidget;
    m_grid = new QGridLayout(content);
    for (QWidget* const column : m_columns)
        column->setParent(content);
    m_area = MakeScrollArea(content);
    m_area->viewport()->installEventFilter(this);
    ArrangeColumns();
    m_status->setAccessibleDescription("What went wrong with the lights last");
    m_status->setMargin(StatusMargin);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_area);
    layout->addWidget(m_status);

    connect(&m_lines, &PendingLines::done, this, &LightsPanel::ShowOutcome);
    connect(&m_desk, &DeskController::refreshed, this, &LightsPanel::Refresh);
    Refresh();
}

/// The window may become too narrow for three columns, or wide enough.
bool LightsPanel::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        ArrangeColumns();
    return QWidget::eventFilter(object, event);
}

void LightsPanel::ArrangeColumns()
{
    constexpr std::array<int, 3> Stretches{3, 1, 2};
    const QMargins margins = m_grid->contentsMargins();
    int width = margins.left() + margins.right() + 2 * m_grid->horizontalSpacing();
    for (const QWidget* const column : m_columns)
        width += column->minimumSizeHint().width();
    const bool isWide = width <= m_area->viewport()->width();
    if (m_isWide == isWide)
        return;
    m_isWide = isWide;
    for (QWidget* const column : m_columns)
        m_grid->removeWidget(column);
    m_grid->addWidget(m_columns[0], 0, 0, isWide ? 1 : 2, 1);
    m_grid->addWidget(m_columns[1], 0, 1);
    m_grid->addWidget(m_columns[2], isWide ? 0 : 1, isWide ? 2 : 1);
    for (int column = 0; column < m_grid->columnCount(); ++column)
        m_grid->setColumnStretch(
            column, isWide || column < 2 ? Stretches.at(static_cast<std::size_t>(column)) : 0);
    m_grid->setRowStretch(0, isWide ? 1 : 0);
    m_grid->setRowStretch(1, isWide ? 0 : 1);
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
