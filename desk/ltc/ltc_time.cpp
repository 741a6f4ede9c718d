// SPDX-License-Identifier: MIT
#include "desk/ltc_time.h"

#include <array>
#include <cstdio>

namespace Desk
{

namespace
{

constexpr std::size_t TextLength = 11;

bool IsLeftOut(const LtcTime& time)
{
    return time.dropFrame && time.frames < 2 && time.seconds == 0 && time.minutes % 10 != 0;
}

/// One number of two digits; above 99 for anything else.
unsigned ReadNumber(std::string_view text)
{
    const auto digit = [](char c) { return static_cast<unsigned char>(c - '0'); };
    return digit(text[0]) > 9 || digit(text[1]) > 9 ? 100U : digit(text[0]) * 10U + digit(text[1]);
}

} // namespace

std::string ToText(const LtcTime& time)
{
    const char separator = time.dropFrame ? ';' : ':';
    std::array<char, 24> buffer{}; // four numbers of at most 3 digits and three separators
    std::snprintf(buffer.data(), buffer.size(), "%02d%c%02d%c%02d%c%02d", time.hours, separator,
                  time.minutes, separator, time.seconds, separator, time.frames);
    return buffer.data();
}

std::optional<LtcTime> ParseLtcTime(std::string_view text, unsigned framesPerSecond)
{
    if (text.size() != TextLength)
        return std::nullopt;
    const std::string separators{text[2], text[5], text[8]};
    if (separators != ":::" && separators != "::;" && separators != ";;;")
        return std::nullopt;
    std::array<std::uint8_t, 4> numbers{};
    for (std::size_t i = 0; i < numbers.size(); ++i)
        numbers[i] = static_cast<std::uint8_t>(ReadNumber(text.substr(i * 3, 2)));
    const LtcTime time{numbers[0], numbers[1], numbers[2], numbers[3], text[8] == ';'};
    return IsValid(time, framesPerSecond) ? std::optional(time) : std::nullopt;
}

bool IsValid(const LtcTime& time, unsigned framesPerSecond)
{
    return time.hours < 24 && time.minutes < 60 && time.seconds < 60 &&
           time.frames < framesPerSecond && !IsLeftOut(time) &&
           (!time.dropFrame || framesPerSecond == 30);
}

LtcTime GetNext(LtcTime time, unsigned framesPerSecond)
{
    if (++time.frames < framesPerSecond)
        return time;
    time.frames = 0;
    if (++time.seconds == 60) {
        time.seconds = 0;
        if (++time.minutes == 60) {
            time.minutes = 0;
            time.hours = static_cast<std::uint8_t>((time.hours + 1) % 24);
        }
    }
    if (IsLeftOut(time))
        time.frames = 2;
    return time;
}

LtcTime GetPrevious(LtcTime time, unsigned framesPerSecond)
{
    if (time.frames > 0) {
        --time.frames;
        if (!IsLeftOut(time))
            return time;
    }
    time.frames = static_cast<std::uint8_t>(framesPerSecond - 1);
    if (time.seconds > 0) {
        --time.seconds;
        return time;
    }
    time.seconds = 59;
    if (time.minutes > 0) {
        --time.minutes;
        return time;
    }
    time.minutes = 59;
    time.hours = static_cast<std::uint8_t>((time.hours + 23) % 24);
    return time;
}

} // namespace Desk
