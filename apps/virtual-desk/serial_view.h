// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>
#include <QPlainTextEdit>
#include <QWidget>
#include <string>

#include "virtual-desk/desk_controller.h"
#include "virtual-desk/level_bar.h"

namespace VirtualDesk
{

/// The flat-panel controller at one serial line: its backlight and what it was told.
///
/// Parts, by the line's device: the LevelBar "backlight DEVICE", the label "counts DEVICE" and the
/// text "packets DEVICE".
class SerialView : public QWidget
{
    Q_OBJECT

public:
    SerialView(const DeskController& desk, const std::string& device, QWidget* parent = nullptr);

    void Refresh();

    /// Packets that are shown.
    static constexpr std::size_t PacketLimit = 50;

private:
    void ShowPackets(std::size_t count);

    const Desk::FlatPanel* const m_panel;
    LevelBar* m_backlight = nullptr;
    QLabel* m_counts = nullptr;
    QPlainTextEdit* m_text = nullptr;
    std::size_t m_shown = 0; // packets that have been shown
};

} // namespace VirtualDesk
