// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>
#include <QWidget>

#include "virtual-desk/desk_controller.h"
#include "virtual-desk/midi_ports_view.h"
#include "virtual-desk/pending_lines.h"

namespace VirtualDesk
{

/// MIDI: ports, switches, a decoded log, a box to send from, and a keyboard to play on.
///
/// Controls: the label "midiStatus", which tells what went wrong last. The parts MidiPortsView,
/// MidiLogView, MidiSendBox and MidiKeyboard name theirs themselves.
class MidiPanel : public QWidget
{
    Q_OBJECT

public:
    explicit MidiPanel(DeskController& desk, QWidget* parent = nullptr);

private:
    QWidget* MakeControls();

    DeskController& m_desk;
    PendingLines m_lines;
    MidiPortsView* m_ports = nullptr;
    QLabel* m_status = nullptr;
};

} // namespace VirtualDesk
