// SPDX-License-Identifier: MIT
#pragma once

#include <QMetaType>
#include <cstdint>
#include <string>

#include "hardware/export.h"
#include "hardware/timecode/rate.h"

namespace Hardware::Timecode
{

/// A timecode address, held field by field as it was given: nothing is checked, wrapped or
/// normalised, so 99:99:99:99 is a frame like any other. A value type; pure, any thread.
///
/// dropFrame says how the address is written, not how it is counted: no conversion here skips
/// numbers. All rates are in frames per second.
class HARDWARE_EXPORT Frame
{
public:
    /// 00:00:00:00 without drop-frame notation.
    Frame() = default;
    Frame(int hours, int minutes, int seconds, int frames, bool dropFrame);
    /// What fromString() makes of @p text; fields it does not find are 0.
    Frame(const std::string& text);
    /// What fromIndex() makes of a position; without drop-frame notation.
    Frame(Index index, double rate);
    Frame(Index index, Interval interval);
    Frame(Index index, TimecodeFormat format);

    /// Reads four numbers with any single character between them, such as "10:20:30:12".
    ///
    /// True when all seven items were found. Fields found before a failure keep their new values,
    /// the others their old ones. dropFrame becomes true exactly when the last separator read is
    /// ';'. What follows the fourth number is ignored.
    bool fromString(const std::string& text);
    /// "01:02:03:04", or "01;02;03;04" with drop-frame notation.
    std::string toString() const;

    /// ((hours * 60 + minutes) * 60 + seconds) * rate + frames.
    Index toIndex(double rate) const;
    Index toIndex(Interval interval) const;
    Index toIndex(TimecodeFormat format) const;

    /// Sets the four fields from a position; dropFrame stays.
    ///
    /// Whole seconds are cut, the frame number is rounded (ties upwards), so index 24.6 at rate 25
    /// is second 0, frame 25. Hours do not wrap at 24; a negative index gives negative fields. A
    /// rate of exactly 0 gives 00:00:00:00. A field out of the range of int, or not a number,
    /// becomes the lowest int.
    void fromIndex(Index index, double rate);
    void fromIndex(Index index, Interval interval);
    void fromIndex(Index index, TimecodeFormat format);

    /// Moves by @p n frames, which may be negative or fractional.
    void add(Index n, double rate);
    void add(Index n, Interval interval);
    void add(Index n, TimecodeFormat format);

    // Order by hours, minutes, seconds, frames as signed numbers; dropFrame does not count. There
    // is no equality operator on purpose: say which of the two meanings you want.
    bool operator<(const Frame& other) const;
    bool operator>(const Frame& other) const;
    bool operator<=(const Frame& other) const;
    bool operator>=(const Frame& other) const;

    std::int32_t hours = 0;
    std::int32_t minutes = 0;
    std::int32_t seconds = 0;
    std::int32_t frames = 0; ///< frame within the second
    bool dropFrame = false;  ///< written with ';' instead of ':'
};

/// Writes 17 bytes in five writes: the four fields as signed 32-bit numbers, most significant byte
/// first, then 1 or 0 for dropFrame.
HARDWARE_EXPORT kel::ostream& operator<<(kel::ostream& out, const Frame& frame);
/// Reads the same; any non-zero flag byte is true. Bytes that did not arrive count as 0.
HARDWARE_EXPORT kel::istream& operator>>(kel::istream& in, Frame& frame);
/// Appends toString().
HARDWARE_EXPORT kel::text_base<char>& operator<<(kel::text_base<char>& out, const Frame& frame);

} // namespace Hardware::Timecode

Q_DECLARE_METATYPE(Hardware::Timecode::Frame)
