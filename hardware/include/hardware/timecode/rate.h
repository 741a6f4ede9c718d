// SPDX-License-Identifier: MIT
#pragma once

#include "hardware/export.h"
#include "hardware/timecode/enumerations.h"
#include "kel/streams.h"
#include "kel/text_base.h"

namespace Hardware::Timecode
{

/// A position counted in frames since 00:00:00:00. Fractions of a frame are allowed.
class Index
{
public:
    constexpr Index(double frames = 0.0) noexcept : m_frames(frames) {}
    constexpr operator double() const noexcept { return m_frames; }

private:
    double m_frames;
};

/// The period of one frame in milliseconds: 25 frames per second are 40.0.
class Interval
{
public:
    constexpr Interval(double milliseconds = 0.0) noexcept : m_milliseconds(milliseconds) {}
    constexpr operator double() const noexcept { return m_milliseconds; }

private:
    double m_milliseconds;
};

// Conversions between rate (frames per second), interval and format. Pure, any thread. A plain
// number, an unsigned one included, is never a format: toRate() takes it for an interval, so that
// toRate(2) is 500, and all others take it for a rate. Pass a TimecodeFormat by its name.

/// Frames per second of a format; 0.0 for Invalid and any value above it.
HARDWARE_EXPORT double toRate(TimecodeFormat format);
/// 1000 / interval; the largest finite double for an interval of exactly 0.
HARDWARE_EXPORT double toRate(Interval interval);
/// 1000 / rate; the largest finite double for a rate of exactly 0.
HARDWARE_EXPORT Interval toInterval(double rate);
/// Interval of the format's rate; the largest finite double for Invalid.
HARDWARE_EXPORT Interval toInterval(TimecodeFormat format);
/// Format whose rate is nearest: 30 gives SMPTE 30 (never NTSC 30), 25 EBU 25, 24 Film 24; any
/// other rate gives Invalid, such as 27 and NaN.
HARDWARE_EXPORT TimecodeFormat toFormat(double rate);
/// Format of the interval's rate.
HARDWARE_EXPORT TimecodeFormat toFormat(Interval interval);

// Binary form: the 8 bytes of the IEEE 754 double, most significant first, in one write. A short
// read is not detected; bytes that did not arrive count as 0.

HARDWARE_EXPORT kel::ostream& operator<<(kel::ostream& out, const Index& index);
HARDWARE_EXPORT kel::istream& operator>>(kel::istream& in, Index& index);
HARDWARE_EXPORT kel::ostream& operator<<(kel::ostream& out, const Interval& interval);
HARDWARE_EXPORT kel::istream& operator>>(kel::istream& in, Interval& interval);

// Text form: six decimals after a point, whatever the locale, as in "40.000000"; cut after 63
// characters.

HARDWARE_EXPORT kel::text_base<char>& operator<<(kel::text_base<char>& out, const Index& index);
HARDWARE_EXPORT kel::text_base<char>& operator<<(kel::text_base<char>& out,
                                                 const Interval& interval);

} // namespace Hardware::Timecode
