// SPDX-License-Identifier: MIT
#include "virtual-desk/midi_send_box.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <vector>

#include "common/hex.h"
#include "virtual-desk/midi_hex_box.h"
#include "virtual-desk/panel_parts.h"

namespace VirtualDesk
{

namespace
{

constexpr int HighestData = 127;
constexpr int Channels = 16;

void AddNumber(QHBoxLayout& row, QSpinBox& box, const QString& name, const QString& text,
               const QString& meaning)
{
    box.setObjectName(name);
    box.setAccessibleName(meaning);
    auto* const label = new QLabel(text);
    label->setBuddy(&box);
    row.addWidget(label);
    row.addWidget(&box, 1);
}

} // namespace

MidiSendBox::MidiSendBox(PendingLines& lines, QWidget* parent)
    : QWidget(parent), m_lines(lines), m_channel(new QSpinBox(this)), m_number(new QSpinBox(this)),
      m_velocity(new QSpinBox(this))
{
    m_channel->setRange(1, Channels);
    m_number->setRange(0, HighestData);
    m_number->setValue(60);
    m_velocity->setRange(0, HighestData);
    m_velocity->setValue(100);
    auto* const box = new MidiHexBox("midiSend", "Sen&d", "Send", this);
    connect(box, &MidiHexBox::entered, this,
            [this](const QString& bytes) { m_lines.Do("send " + bytes); });

    auto* const numbers = new QHBoxLayout;
    AddNumber(*numbers, *m_channel, "midiChannel", "Channel", "Channel of quick messages");
    AddNumber(*numbers, *m_number, "midiNumber", "Note, program", "Note or program");
    AddNumber(*numbers, *m_velocity, "midiVelocity", "Velocity", "Velocity of notes");

    auto* const buttons = new QGridLayout;
    int place = 0;
    const auto add = [&](const char* name, const char* text, auto send) {
        QPushButton* const button =
            MakeButton(name, text, "Send " + QString(text).remove('&').toLower());
        connect(button, &QPushButton::clicked, this, send);
        buttons->addWidget(button, place / 3, place % 3);
        ++place;
    };
    add("midiNoteOn", "Note on", [this] {
        Send({0x90 | GetChannel(), m_number->value(), m_velocity->value()});
    });
    add("midiNoteOff", "Note off", [this] {
        Send({0x80 | GetChannel(), m_number->value(), m_velocity->value()});
    });
    add("midiProgram", "Program", [this] { Send({0xC0 | GetChannel(), m_number->value()}); });
    add("midiStart", "Start", [this] { Send({0xFA}); });
    add("midiStop", "Stop", [this] { Send({0xFC}); });
    add("midiClock", "Clock", [this] { Send({0xF8}); });

    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(box);
    layout->addLayout(numbers);
    layout->addLayout(buttons);
}

void MidiSendBox::Send(std::initializer_list<int> bytes)
{
    std::vector<std::uint8_t> message;
    for (const int byte : bytes)
        message.push_back(static_cast<std::uint8_t>(byte));
    m_lines.Do("send " + QString::fromStdString(Tools::FormatHex(message)));
}

} // namespace VirtualDesk
