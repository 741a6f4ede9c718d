// SPDX-License-Identifier: MIT
#include "hardware/timecode/frame.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <tuple>

#include "timecode/big_endian.h"

namespace Hardware::Timecode
{

namespace
{

/// Truncates towards zero. What no int can hold, NaN included, is the lowest int, which is what
/// x86 gives where the language gives nothing.
int ToInt(double value)
{
    constexpr double Lowest = std::numeric_limits<int>::min();
    constexpr double Highest = std::numeric_limits<int>::max();
    const double whole = std::trunc(value);
    return whole >= Lowest && whole <= Highest ? static_cast<int>(whole)
                                               : std::numeric_limits<int>::min();
}

void WriteField(kel::ostream& out, std::int32_t field)
{
    WriteBigEndian(out, static_cast<std::uint32_t>(field));
}

std::int32_t ReadField(kel::istream& in)
{
    return static_cast<std::int32_t>(ReadBigEndian<std::uint32_t>(in));
}

auto GetOrder(const Frame& frame)
{
    return std::tie(frame.hours, frame.minutes, frame.seconds, frame.frames);
}

} // namespace

Frame::Frame(int hours_, int minutes_, int seconds_, int frames_, bool dropFrame_)
    : hours(hours_), minutes(minutes_), seconds(seconds_), frames(frames_), dropFrame(dropFrame_)
{
}

Frame::Frame(const std::string& text)
{
    fromString(text);
}

Frame::Frame(Index index, double rate)
{
    fromIndex(index, rate);
}

Frame::Frame(Index index, Interval interval)
{
    fromIndex(index, interval);
}

Frame::Frame(Index index, TimecodeFormat format)
{
    fromIndex(index, format);
}

bool Frame::fromString(const std::string& text)
{
    // All three separators go to one character, so that only the last one read decides: on purpose
    // unlike toString(), which writes the same one three times.
    char separator = 0;
    // NOLINTNEXTLINE(cert-err34-c): the count of items is the check
    const int items = std::sscanf(text.c_str(), "%d%c%d%c%d%c%d", &hours, &separator, &minutes,
                                  &separator, &seconds, &separator, &frames);
    dropFrame = separator == ';';
    return items == 7;
}

std::string Frame::toString() const
{
    const char separator = dropFrame ? ';' : ':';
    std::array<char, 64> buffer{}; // four numbers of at most 11 characters and three separators
    const int length = std::snprintf(buffer.data(), buffer.size(), "%02d%c%02d%c%02d%c%02d", hours,
                                     separator, minutes, separator, seconds, separator, frames);
    return std::string(buffer.data(), static_cast<std::size_t>(length));
}

Index Frame::toIndex(double rate) const
{
    // In floating point throughout, since the fields may be any ints.
    return ((static_cast<double>(hours) * 60.0 + minutes) * 60.0 + seconds) * rate + frames;
}

Index Frame::toIndex(Interval interval) const
{
    return toIndex(toRate(interval));
}

Index Frame::toIndex(TimecodeFormat format) const
{
    return toIndex(toRate(format));
}

void Frame::fromIndex(Index index, double rate)
{
    if (rate == 0.0) {
        hours = minutes = seconds = frames = 0;
        return;
    }
    // Seconds are cut but frames are rounded, on purpose: 24.6 at 25 is second 0, frame 25. The
    // order of the operations counts at rates such as 29.97.
    hours = ToInt(index / (rate * 3600.0));
    minutes = ToInt(std::fmod(index / (rate * 60.0), 60.0));
    seconds = ToInt(std::fmod(index / rate, 60.0));
    frames = ToInt(std::floor(index + 0.5 - static_cast<double>(hours) * 3600.0 * rate -
                              static_cast<double>(minutes) * 60.0 * rate - seconds * rate));
}

void Frame::fromIndex(Index index, Interval interval)
{
    fromIndex(index, toRate(interval));
}

void Frame::fromIndex(Index index, TimecodeFormat format)
{
    fromIndex(index, toRate(format));
}

void Frame::add(Index n, double rate)
{
    fromIndex(toIndex(rate) + n, rate);
}

void Frame::add(Index n, Interval interval)
{
    add(n, toRate(interval));
}

void Frame::add(Index n, TimecodeFormat format)
{
    add(n, toRate(format));
}

bool Frame::operator<(const Frame& other) const
{
    return GetOrder(*this) < GetOrder(other);
}

bool Frame::operator>(const Frame& other) const
{
    return GetOrder(*this) > GetOrder(other);
}

bool Frame::operator<=(const Frame& other) const
{
    return !(*this > other);
}

bool Frame::operator>=(const Frame& other) const
{
    return !(*this < other);
}

kel::ostream& operator<<(kel::ostream& out, const Frame& frame)
{
    WriteField(out, frame.hours);
    WriteField(out, frame.minutes);
    WriteField(out, frame.seconds);
    WriteField(out, frame.frames);
    const unsigned char flag = frame.dropFrame ? 1 : 0;
    out.write(&flag, 1);
    return out;
}

kel::istream& operator>>(kel::istream& in, Frame& frame)
{
    frame.hours = ReadField(in);
    frame.minutes = ReadField(in);
    frame.seconds = ReadField(in);
    frame.frames = ReadField(in);
    unsigned char flag = 0;
    in.read(&flag, 1);
    frame.dropFrame = flag != 0;
    return in;
}

kel::text_base<char>& operator<<(kel::text_base<char>& out, const Frame& frame)
{
    return out << frame.toString();
}

} // namespace Hardware::Timecode
