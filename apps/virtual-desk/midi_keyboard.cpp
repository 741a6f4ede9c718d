// SPDX-License-Identifier: MIT
#include "virtual-desk/midi_keyboard.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <algorithm>
#include <array>

#include "common/hex.h"
#include "virtual-desk/midi_hex_box.h"
#include "virtual-desk/panel_parts.h"

namespace VirtualDesk
{

namespace
{

constexpr int HighestData = 127;
constexpr int Channels = 16;
constexpr int NotesOfOctave = 12;
constexpr int LowestOctave = -1;
constexpr int HighestOctave = 9;
constexpr int UsualOctave = 4;

/// A key and the half column that it begins in. White keys are two wide, and so are black ones,
/// which stand between two white ones.
struct Key {
    const char* name;
    bool isBlack;
    int column;
};

constexpr std::array<Key, NotesOfOctave + 1> Keys{{{"C", false, 0},
                                                   {"C\u266F", true, 1},
                                                   {"D", false, 2},
                                                   {"D\u266F", true, 3},
                                                   {"E", false, 4},
                                                   {"F", false, 6},
                                                   {"F\u266F", true, 7},
                                                   {"G", false, 8},
                                                   {"G\u266F", true, 9},
                                                   {"A", false, 10},
                                                   {"A\u266F", true, 11},
                                                   {"B", false, 12},
                                                   {"C", false, 14}}};

QString ToHex(std::initializer_list<int> bytes)
{
    std::vector<std::uint8_t> message;
    for (const int byte : bytes)
        message.push_back(static_cast<std::uint8_t>(byte));
    return QString::fromStdString(Tools::FormatHex(message));
}

QSpinBox* MakeNumber(const QString& name, const QString& meaning, int lowest, int highest,
                     int value)
{
    auto* const box = new QSpinBox;
    box->setObjectName(name);
    box->setAccessibleName(meaning);
    box->setRange(lowest, highest);
    box->setValue(value);
    return box;
}

} // namespace

MidiKeyboard::MidiKeyboard(PendingLines& lines, const QStringList& ports, QWidget* parent)
    : QWidget(parent), m_lines(lines)
{
    auto* const box = new MidiHexBox("midiFeed", "F&eed", "Feed", this);
    connect(box, &MidiHexBox::entered, this, &MidiKeyboard::Feed);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(MakeChoices(ports));
    layout->addLayout(MakeKeys());
    layout->addWidget(box);
    setEnabled(!ports.isEmpty());
}

QLayout* MidiKeyboard::MakeChoices(const QStringList& ports)
{
    m_port = new QComboBox;
    m_port->setObjectName("midiKeyPort");
    m_port->setAccessibleName("Port that the keyboard is plugged into");
    m_port->addItems(ports);
    m_channel = MakeNumber("midiKeyChannel", "Channel of the keyboard", 1, Channels, 1);
    m_octave = MakeNumber("midiKeyOctave", "Octave of the keyboard", LowestOctave, HighestOctave,
                          UsualOctave);
    m_velocity = MakeNumber("midiKeyVelocity", "Velocity of the keys", 1, HighestData, 100);
    auto* const grid = new QGridLayout;
    grid->addWidget(new QLabel("Port"), 0, 0);
    grid->addWidget(m_port, 0, 1);
    grid->addWidget(new QLabel("Channel"), 0, 2);
    grid->addWidget(m_channel, 0, 3);
    grid->addWidget(new QLabel("Octave"), 1, 0);
    grid->addWidget(m_octave, 1, 1);
    grid->addWidget(new QLabel("Velocity"), 1, 2);
    grid->addWidget(m_velocity, 1, 3);
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(3, 1);
    return grid;
}

QLayout* MidiKeyboard::MakeKeys()
{
    auto* const grid = new QGridLayout;
    grid->setSpacing(2);
    for (int distance = 0; distance <= NotesOfOctave; ++distance) {
        const Key& key = Keys.at(static_cast<std::size_t>(distance));
        grid->addWidget(MakeKey(distance), key.isBlack ? 0 : 1, key.column, 1, 2);
    }
    for (int column = 0; column < 16; ++column)
        grid->setColumnStretch(column, 1);
    return grid;
}

QPushButton* MidiKeyboard::MakeKey(int distance)
{
    const Key& key = Keys.at(static_cast<std::size_t>(distance));
    const QString name = QString::fromUtf8(key.name);
    QPushButton* const button =
        MakeButton("midiKey" + QString::number(distance), name, "Key " + name);
    const int height = fontMetrics().height();
    button->setMinimumSize(height * 3 / 2, key.isBlack ? height * 2 : height * 3);
    button->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    if (key.isBlack) { // the palette's darker shade, with text to be read on it
        QPalette dark = palette();
        dark.setColor(QPalette::Button, palette().color(QPalette::Shadow));
        dark.setColor(QPalette::ButtonText, palette().color(QPalette::BrightText));
        button->setPalette(dark);
    }
    connect(button, &QPushButton::pressed, this, [this, distance] { Press(distance); });
    connect(button, &QPushButton::released, this, [this, distance] { Release(distance); });
    return button;
}

void MidiKeyboard::Press(int distance)
{
    Release(distance);
    const int note = (m_octave->value() + 1) * NotesOfOctave + distance;
    if (note > HighestData)
        return;
    const int channel = m_channel->value() - 1;
    // The note ends where it began, whatever is chosen meanwhile.
    m_held[distance] = GetLine(ToHex({0x80 | channel, note, 0}));
    m_lines.Do(GetLine(ToHex({0x90 | channel, note, m_velocity->value()})));
}

void MidiKeyboard::Release(int distance)
{
    const auto held = m_held.find(distance);
    if (held == m_held.end())
        return;
    const QString line = held->second;
    m_held.erase(held);
    m_lines.Do(line);
}

/// Nobody holds a key that cannot be seen.
void MidiKeyboard::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    for (int distance = 0; distance <= NotesOfOctave; ++distance)
        Release(distance);
}

void MidiKeyboard::Feed(const QString& bytes)
{
    m_lines.Do(GetLine(bytes));
}

QString MidiKeyboard::GetLine(const QString& bytes) const
{
    return "midi " + ToWord(m_port->currentText()) + " feed " + bytes;
}

} // namespace VirtualDesk
