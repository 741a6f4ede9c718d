// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Desk
{

/// The time that one frame of longitudinal timecode carries. A value; pure, any thread.
struct LtcTime {
    std::uint8_t hours = 0;   ///< 0 to 23
    std::uint8_t minutes = 0; ///< 0 to 59
    std::uint8_t seconds = 0; ///< 0 to 59
    std::uint8_t frames = 0;  ///< frame within the second, 0 to 29
    bool dropFrame = false;   ///< counted with drop frame

    bool operator==(const LtcTime& other) const = default;
};

/// "10:20:30:12", or "10;20;30;12" with drop frame.
std::string ToText(const LtcTime& time);
/// Reads what ToText() writes, and "10:20:30;12" too; nothing for any other text, nor for a time
/// that does not exist at this count of frames a second (24, 25 or 30), such as 00;01;00;00.
std::optional<LtcTime> ParseLtcTime(std::string_view text, unsigned framesPerSecond);

/// True for a time that exists at this count of frames a second. With drop frame, frames 0 and 1 of
/// every minute that ten does not divide are left out.
bool IsValid(const LtcTime& time, unsigned framesPerSecond);
/// The time one frame later; midnight follows the last frame of a day. @p time must be valid.
LtcTime GetNext(LtcTime time, unsigned framesPerSecond);
/// The time one frame earlier; the last frame of a day precedes midnight. @p time must be valid.
LtcTime GetPrevious(LtcTime time, unsigned framesPerSecond);

} // namespace Desk
