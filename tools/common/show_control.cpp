// SPDX-License-Identifier: MIT
#include "common/show_control.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>

#include "common/hex.h"
#include "hardware/midi/msc_com_format.h"
#include "kel/text_base.h"
#include "xtti/type_reg.h"

namespace Tools
{

namespace
{

/// Commands of MIDI Show Control 1.0, by number.
enum Command : std::uint8_t {
    Command_TimedGo = 0x04,
    Command_Set = 0x06,
    Command_Fire = 0x07,
};

/// Bytes of a time of day with frames and fractions.
constexpr std::size_t TimeLength = 5;

std::string GetCommandName(std::uint8_t command)
{
    constexpr std::array<const char*, 12> General{nullptr,    "GO",      "STOP",  "RESUME",
                                                  "TIMED_GO", "LOAD",    "SET",   "FIRE",
                                                  "ALL_OFF",  "RESTORE", "RESET", "GO_OFF"};
    if (command != 0 && command < General.size())
        return General[command];
    return "command " + FormatHex({&command, 1});
}

/// Name of a command format, in lower case and without its number.
std::string GetFormatName(std::uint8_t format)
{
    if (format == 0x7F)
        return "all types";
    const auto value = static_cast<Hardware::MscComFormat>(format);
    const xtti::type_reg* const type = xtti::find(get_type_code<Hardware::MscComFormat>());
    if (!type || value >= Hardware::MscComFormat_MAX)
        return "format " + std::to_string(format);
    kel::text<char, 64> text;
    text << type->to_text(*type, &value);
    std::string name(text.view());
    name.erase(0, std::min(name.find(": ") + 2, name.size()));
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return name;
}

std::string GetDeviceName(std::uint8_t device)
{
    if (device == 0x7F)
        return "all devices";
    if (device >= 0x70)
        return "group " + std::to_string(device - 0x6F);
    return "device " + std::to_string(device);
}

/// Takes the text up to the next zero byte off the front.
std::string TakeText(std::span<const std::uint8_t>& data)
{
    const auto end = std::find(data.begin(), data.end(), 0);
    std::string text;
    std::for_each(data.begin(), end, [&](std::uint8_t byte) {
        text += std::isprint(byte) ? static_cast<char>(byte) : '?';
    });
    const auto taken = static_cast<std::size_t>(end - data.begin()) + (end == data.end() ? 0 : 1);
    data = data.subspan(taken);
    return text;
}

/// Cue number, list and path, as far as they are given.
std::string DescribeCue(std::span<const std::uint8_t> data)
{
    std::string text;
    for (const char* const part : {" cue ", " list ", " path "}) {
        const std::string value = TakeText(data);
        if (!value.empty())
            text += part + value;
    }
    return text;
}

std::string DescribeTime(std::span<const std::uint8_t> time)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), " in %02d:%02d:%02d:%02d", time[0] & 0x1F, time[1],
                  time[2], time[3] & 0x1F);
    return text.data();
}

std::string DescribeData(std::uint8_t command, std::span<const std::uint8_t> data)
{
    switch (command) {
    case Command_TimedGo:
        if (data.size() < TimeLength)
            return {};
        return DescribeCue(data.subspan(TimeLength)) + DescribeTime(data);
    case Command_Set:
        if (data.size() < 4)
            return {};
        return " control " + std::to_string(data[0] | data[1] << 7) + " to " +
               std::to_string(data[2] | data[3] << 7);
    case Command_Fire:
        return data.empty() ? std::string() : " macro " + std::to_string(data[0]);
    default:
        return DescribeCue(data);
    }
}

} // namespace

std::string DescribeShowControl(std::uint8_t device, std::span<const std::uint8_t> data)
{
    return "show control " + GetCommandName(data[1]) + DescribeData(data[1], data.subspan(2)) +
           " [" + GetFormatName(data[0]) + ", " + GetDeviceName(device) + ']';
}

} // namespace Tools
