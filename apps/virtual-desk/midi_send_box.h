// SPDX-License-Identifier: MIT
#pragma once

#include <QSpinBox>
#include <QWidget>

#include "virtual-desk/pending_lines.h"

namespace VirtualDesk
{

/// Has the application send MIDI.
///
/// Controls: a MidiHexBox "midiSend"; for quick messages the numbers "midiChannel", "midiNumber"
/// and "midiVelocity", and the buttons "midiNoteOn", "midiNoteOff", "midiProgram", "midiStart",
/// "midiStop" and "midiClock".
class MidiSendBox : public QWidget
{
    Q_OBJECT

public:
    explicit MidiSendBox(PendingLines& lines, QWidget* parent = nullptr);

private:
    void Send(std::initializer_list<int> bytes);
    int GetChannel() const { return m_channel->value() - 1; }

    PendingLines& m_lines;
    QSpinBox* const m_channel;
    QSpinBox* const m_number;
    QSpinBox* const m_velocity;
};

} // namespace VirtualDesk
