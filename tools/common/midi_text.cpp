// SPDX-License-Identifier: MIT
#include "common/midi_text.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "common/hex.h"
#include "common/show_control.h"
#include "hardware/midi/device.h"

namespace Tools
{

namespace
{

/// Sub-identifiers of the universal real-time messages (MIDI 1.0).
constexpr std::uint8_t SubIdTimecode = 0x01;
constexpr std::uint8_t SubIdShowControl = 0x02;
constexpr std::uint8_t SubIdMachineControl = 0x06;

/// Bytes shown of a message that has no words.
constexpr std::size_t ShownBytes = 16;

std::string GetNoteName(unsigned note)
{
    constexpr std::array<const char*, 12> Names{"C",  "C#", "D",  "D#", "E",  "F",
                                                "F#", "G",  "G#", "A",  "A#", "B"};
    return Names[note % 12] + std::to_string(static_cast<int>(note / 12) - 1);
}

/// Name of a controller that has one of common use, else its number.
std::string GetControllerName(unsigned number)
{
    switch (number) {
    case 0:
        return "bank select";
    case 1:
        return "modulation";
    case 7:
        return "volume";
    case 10:
        return "pan";
    case 11:
        return "expression";
    case 64:
        return "sustain";
    case 120:
        return "all sound off";
    case 121:
        return "reset controllers";
    case 123:
        return "all notes off";
    default:
        return std::to_string(number);
    }
}

std::string DescribeChannelMessage(unsigned status, unsigned first, unsigned second)
{
    const std::string channel = " ch " + std::to_string((status & 0x0F) + 1) + ' ';
    const std::string value = std::to_string(second);
    switch (status >> 4) {
    case 0x8:
        return "note off" + channel + GetNoteName(first) + " vel " + value;
    case 0x9:
        return "note on" + channel + GetNoteName(first) + " vel " + value;
    case 0xA:
        return "key pressure" + channel + GetNoteName(first) + ' ' + value;
    case 0xB:
        return "control" + channel + GetControllerName(first) + ' ' + value;
    case 0xC:
        return "program" + channel + std::to_string(first);
    case 0xD:
        return "pressure" + channel + std::to_string(first);
    default: {
        const auto bend = static_cast<int>(second << 7 | first) - 8192; // 14 bits around the centre
        return "pitch bend" + channel + (bend > 0 ? "+" : "") + std::to_string(bend);
    }
    }
}

std::string DescribeSystemMessage(unsigned status, unsigned first, unsigned second)
{
    switch (status) {
    case 0xF1:
        return "timecode quarter frame " + std::to_string(first >> 4) + " value " +
               std::to_string(first & 0x0F);
    case 0xF2:
        return "song position " + std::to_string(second << 7 | first);
    case 0xF3:
        return "song select";
    case 0xF6:
        return "tune request";
    case 0xF8:
        return "clock";
    case 0xFA:
        return "start";
    case 0xFB:
        return "continue";
    case 0xFC:
        return "stop";
    case 0xFE:
        return "active sensing";
    case 0xFF:
        return "reset";
    default: {
        const auto byte = static_cast<std::uint8_t>(status);
        return "undefined " + FormatHex({&byte, 1});
    }
    }
}

std::string DescribeMachineControl(std::uint8_t command)
{
    switch (command) {
    case 0x01:
        return "machine control STOP";
    case 0x02:
        return "machine control PLAY";
    case 0x03:
        return "machine control DEFERRED_PLAY";
    case 0x04:
        return "machine control FAST_FORWARD";
    case 0x05:
        return "machine control REWIND";
    case 0x06:
        return "machine control RECORD";
    case 0x09:
        return "machine control PAUSE";
    case 0x44:
        return "machine control LOCATE";
    default:
        return "machine control " + FormatHex({&command, 1});
    }
}

/// Full-frame timecode: the two bits above the hours tell the rate, which names the separators.
std::string DescribeFullFrame(std::span<const std::uint8_t> time)
{
    const bool dropFrame = (time[0] >> 5 & 3) == 2;
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "timecode full frame %02d:%02d:%02d%c%02d",
                  time[0] & 0x1F, time[1], time[2], dropFrame ? ';' : ':', time[3]);
    return text.data();
}

/// Words for a universal real-time message (0xF0 0x7F ...), or none.
std::string DescribeRealTime(std::span<const std::uint8_t> message)
{
    // 0xF0 0x7F, device, sub-identifier, data, 0xF7
    if (message.size() < 6 || message[1] != 0x7F || message.back() != 0xF7)
        return {};
    const std::span<const std::uint8_t> data = message.subspan(4, message.size() - 5);
    switch (message[3]) {
    case SubIdShowControl:
        return data.size() < 2 ? std::string() : DescribeShowControl(message[2], data);
    case SubIdMachineControl:
        return DescribeMachineControl(data[0]);
    case SubIdTimecode:
        return data.size() == 5 && data[0] == 1 ? DescribeFullFrame(data.subspan(1))
                                                : std::string();
    default:
        return {};
    }
}

} // namespace

std::string DescribeShortMessage(std::uint32_t message)
{
    const unsigned status = message & 0xFF;
    const unsigned first = message >> 8 & 0xFF;
    const unsigned second = message >> 16 & 0xFF;
    return status >= 0xF0 ? DescribeSystemMessage(status, first, second)
                          : DescribeChannelMessage(status, first, second);
}

std::string DescribeSystemExclusive(std::span<const std::uint8_t> message)
{
    std::string words = DescribeRealTime(message);
    if (!words.empty())
        return words;
    std::string text = "system exclusive " + std::to_string(message.size()) + " bytes " +
                       FormatHex(message.first(std::min(message.size(), ShownBytes)));
    if (message.size() > ShownBytes)
        text += " ...";
    return text;
}

unsigned GetShortMessageLength(std::uint32_t message)
{
    using Hardware::Midi::Device;
    const unsigned status = message & 0xFF;
    return status >= 0xF0 ? Device::systemMessageLength[status & 0x0F]
                          : Device::noteMessageLength[status >> 4];
}

std::optional<std::uint32_t> PackShortMessage(std::span<const std::uint8_t> bytes)
{
    constexpr std::uint8_t StatusBit = 0x80;
    constexpr std::uint8_t SystemExclusive = 0xF0;
    if (bytes.empty() || bytes.front() < StatusBit || bytes.front() == SystemExclusive ||
        bytes.size() != GetShortMessageLength(bytes.front()) ||
        std::any_of(bytes.begin() + 1, bytes.end(),
                    [](std::uint8_t byte) { return byte >= StatusBit; }))
        return std::nullopt;
    std::uint32_t message = 0;
    for (std::size_t index = bytes.size(); index > 0; --index)
        message = message << 8U | bytes[index - 1];
    return message;
}

} // namespace Tools
