// SPDX-License-Identifier: MIT
#pragma once

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QWidget>
#include <array>
#include <optional>
#include <vector>

#include "virtual-desk/desk_controller.h"
#include "virtual-desk/display_view.h"
#include "virtual-desk/light_list.h"
#include "virtual-desk/networks_view.h"
#include "virtual-desk/pending_lines.h"
#include "virtual-desk/serial_view.h"
#include "virtual-desk/settings_form.h"

namespace VirtualDesk
{

/// Lights, displays, settings, link lights and serial panels.
///
/// Controls: the DisplayViews "display left", "display centre" and "display right"; the buttons
/// "screenSaver" (checked while it is on), "workLightKey", "openDrawer", "closeDrawer",
/// "consoleStart" and "consoleEnd"; the label "lightsStatus", which tells what went wrong last. The
/// parts LightList, SettingsForm, NetworksView and SerialView name theirs themselves.
class LightsPanel : public QWidget
{
    Q_OBJECT

public:
    explicit LightsPanel(DeskController& desk, QWidget* parent = nullptr);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    /// Puts the third column below the second if it does not fit beside it.
    void ArrangeColumns();
    QWidget* MakeDisplays();
    QWidget* MakeActions();
    QWidget* MakeSerialViews();
    QPushButton* MakeAction(const QString& name, const QString& text, const QString& line);
    void Refresh();
    void RefreshDisplays();
    void ShowScreenSaver();
    void ShowOutcome(const QString& line, const QString& error);

    DeskController& m_desk;
    PendingLines m_lines;
    LightList* m_lights = nullptr;
    SettingsForm* m_settings = nullptr;
    NetworksView* m_networks = nullptr;
    std::array<DisplayView*, 3> m_displays{}; // in the order of GetDisplays()
    std::vector<SerialView*> m_serialViews;
    QPushButton* m_screenSaver = nullptr;
    QScrollArea* m_area = nullptr;
    QGridLayout* m_grid = nullptr; // of the columns
    std::array<QWidget*, 3> m_columns{};
    std::optional<bool> m_isWide; // enough for three columns; none before they were arranged
    QLabel* m_status = nullptr;
};

} // namespace VirtualDesk
