// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <tuple>
#include <variant>
#include <vector>

#include "platform_export.h"

/// What travels between the widget driver and a device: one report of bytes for each happening and
/// each command. The first byte is the report's code; its fields follow in order, least byte
/// first, without padding; lists and texts begin with their 16-bit length. The layout is the
/// stand-alone platform's own.
namespace Standalone::Report
{

// From the device: what happened.

struct Button {
    static constexpr std::uint8_t Code = 0x01;
    std::uint16_t index = 0;
    std::uint8_t pressed = 0;
    auto operator<=>(const Button&) const = default;
    auto GetFields() { return std::tie(index, pressed); }
};
struct Fader {
    static constexpr std::uint8_t Code = 0x02;
    std::uint16_t index = 0;
    std::int32_t value = 0;
    auto operator<=>(const Fader&) const = default;
    auto GetFields() { return std::tie(index, value); }
};
struct MotorFader {
    static constexpr std::uint8_t Code = 0x03;
    std::uint16_t index = 0;
    std::int32_t value = 0;
    auto operator<=>(const MotorFader&) const = default;
    auto GetFields() { return std::tie(index, value); }
};
struct Encoder {
    static constexpr std::uint8_t Code = 0x04;
    std::uint16_t index = 0;
    std::int32_t delta = 0;
    auto operator<=>(const Encoder&) const = default;
    auto GetFields() { return std::tie(index, delta); }
};
/// A trackball that is built into a wing.
struct WingTrackball {
    static constexpr std::uint8_t Code = 0x05;
    std::int32_t dx = 0;
    std::int32_t dy = 0;
    auto operator<=>(const WingTrackball&) const = default;
    auto GetFields() { return std::tie(dx, dy); }
};
struct LedChange {
    static constexpr std::uint8_t Code = 0x06;
    std::uint16_t index = 0;
    std::uint8_t state = 0;
    auto operator<=>(const LedChange&) const = default;
    auto GetFields() { return std::tie(index, state); }
};
struct KeyboardDrawer {
    static constexpr std::uint8_t Code = 0x07;
    std::int32_t drawer = 0;
    std::int32_t state = 0; ///< 0 for open
    auto operator<=>(const KeyboardDrawer&) const = default;
    auto GetFields() { return std::tie(drawer, state); }
};
struct Configuration {
    static constexpr std::uint8_t Code = 0x08;
    std::int32_t kind = 0;
    std::uint32_t version = 0;
    std::vector<std::uint8_t> surfaces; ///< surface byte of each display, from the first
    auto operator<=>(const Configuration&) const = default;
    auto GetFields() { return std::tie(kind, version, surfaces); }
};
/// The trackball of the console.
struct TrackballAxis {
    static constexpr std::uint8_t Code = 0x09;
    std::int32_t axis = 0;
    std::int32_t value = 0;
    auto operator<=>(const TrackballAxis&) const = default;
    auto GetFields() { return std::tie(axis, value); }
};
struct BarButton {
    static constexpr std::uint8_t Code = 0x0A;
    std::int32_t button = 0;
    std::uint8_t pressed = 0;
    auto operator<=>(const BarButton&) const = default;
    auto GetFields() { return std::tie(button, pressed); }
};
struct Timecode {
    static constexpr std::uint8_t Code = 0x0B;
    std::uint8_t hours = 0;
    std::uint8_t minutes = 0;
    std::uint8_t seconds = 0;
    std::uint8_t frames = 0;
    std::uint8_t dropFrame = 0;
    auto operator<=>(const Timecode&) const = default;
    auto GetFields() { return std::tie(hours, minutes, seconds, frames, dropFrame); }
};

// To the device: what to do.

struct SetLed {
    static constexpr std::uint8_t Code = 0x81;
    std::uint16_t index = 0;
    std::uint8_t state = 0;
    auto operator<=>(const SetLed&) const = default;
    auto GetFields() { return std::tie(index, state); }
};
struct SetAllLed {
    static constexpr std::uint8_t Code = 0x82;
    std::uint8_t state = 0;
    auto operator<=>(const SetAllLed&) const = default;
    auto GetFields() { return std::tie(state); }
};
struct SetDimmer {
    static constexpr std::uint8_t Code = 0x83;
    std::uint8_t channel = 0;
    std::uint8_t level = 0;
    auto operator<=>(const SetDimmer&) const = default;
    auto GetFields() { return std::tie(channel, level); }
};
struct SetFader {
    static constexpr std::uint8_t Code = 0x84;
    std::uint16_t index = 0;
    std::uint8_t position = 0;
    auto operator<=>(const SetFader&) const = default;
    auto GetFields() { return std::tie(index, position); }
};
struct SetLcdColor {
    static constexpr std::uint8_t Code = 0x85;
    std::uint16_t lcd = 0;
    std::uint32_t rgb = 0;
    auto operator<=>(const SetLcdColor&) const = default;
    auto GetFields() { return std::tie(lcd, rgb); }
};
struct SetLcdBrightness {
    static constexpr std::uint8_t Code = 0x86;
    std::uint16_t lcd = 0;
    std::uint8_t brightness = 0;
    auto operator<=>(const SetLcdBrightness&) const = default;
    auto GetFields() { return std::tie(lcd, brightness); }
};
struct SetAllLcdBrightness {
    static constexpr std::uint8_t Code = 0x87;
    std::uint8_t brightness = 0;
    auto operator<=>(const SetAllLcdBrightness&) const = default;
    auto GetFields() { return std::tie(brightness); }
};
struct SetLcdText {
    static constexpr std::uint8_t Code = 0x88;
    std::uint16_t lcd = 0;
    std::vector<std::uint32_t> text; ///< code points; none to clear
    auto operator<=>(const SetLcdText&) const = default;
    auto GetFields() { return std::tie(lcd, text); }
};
struct SetLcdFlash {
    static constexpr std::uint8_t Code = 0x89;
    std::uint16_t lcd = 0;
    std::uint8_t flash = 0;
    auto operator<=>(const SetLcdFlash&) const = default;
    auto GetFields() { return std::tie(lcd, flash); }
};
struct SetHash {
    static constexpr std::uint8_t Code = 0x8A;
    std::uint32_t hash = 0;
    auto operator<=>(const SetHash&) const = default;
    auto GetFields() { return std::tie(hash); }
};
struct SetSleep {
    static constexpr std::uint8_t Code = 0x8B;
    std::uint8_t sleep = 0;
    auto operator<=>(const SetSleep&) const = default;
    auto GetFields() { return std::tie(sleep); }
};
struct Beacon {
    static constexpr std::uint8_t Code = 0x8C;
    std::uint8_t section = 0; ///< 0 for the whole unit
    auto operator<=>(const Beacon&) const = default;
    auto GetFields() { return std::tie(section); }
};
/// Report the positions of all controls again.
struct Refresh {
    static constexpr std::uint8_t Code = 0x8D;
    auto operator<=>(const Refresh&) const = default;
    auto GetFields() { return std::tie(); }
};
struct WriteCells {
    static constexpr std::uint8_t Code = 0x8E;
    std::vector<std::uint8_t> surfaces; ///< surface byte of each display
    std::vector<std::uint32_t> cells;   ///< ten for each display
    auto operator<=>(const WriteCells&) const = default;
    auto GetFields() { return std::tie(surfaces, cells); }
};
struct SetLinkLights {
    static constexpr std::uint8_t Code = 0x8F;
    std::uint8_t consoleActive = 0;
    std::uint8_t consoleGigabit = 0;
    std::uint8_t fixtureActive = 0;
    std::uint8_t fixtureGigabit = 0;
    auto operator<=>(const SetLinkLights&) const = default;
    auto GetFields()
    {
        return std::tie(consoleActive, consoleGigabit, fixtureActive, fixtureGigabit);
    }
};

typedef std::variant<Button, Fader, MotorFader, Encoder, WingTrackball, LedChange, KeyboardDrawer,
                     Configuration, TrackballAxis, BarButton, Timecode>
    Input;
typedef std::variant<SetLed, SetAllLed, SetDimmer, SetFader, SetLcdColor, SetLcdBrightness,
                     SetAllLcdBrightness, SetLcdText, SetLcdFlash, SetHash, SetSleep, Beacon,
                     Refresh, WriteCells, SetLinkLights>
    Output;
typedef std::vector<std::uint8_t> Bytes;

PLATFORM_EXPORT Bytes Encode(const Input& input);
PLATFORM_EXPORT Bytes Encode(const Output& output);
/// Nothing when the code is unknown or the length does not fit it exactly.
PLATFORM_EXPORT std::optional<Input> DecodeInput(std::span<const std::uint8_t> bytes);
PLATFORM_EXPORT std::optional<Output> DecodeOutput(std::span<const std::uint8_t> bytes);

} // namespace Standalone::Report
