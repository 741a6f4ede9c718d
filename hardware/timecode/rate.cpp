// SPDX-License-Identifier: MIT
#include "hardware/timecode/rate.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "timecode/big_endian.h"

namespace Hardware::Timecode
{

namespace
{

/// Rates by format. "NTSC 30" is exactly 30 on purpose: no clock here runs at 29.97.
constexpr std::array<double, 4> Rates{30.0, 30.0, 25.0, 24.0};

constexpr double LargestDouble = std::numeric_limits<double>::max();

/// 1000 / value: from rate to interval and back are the same division.
double DivideThousandBy(double value)
{
    return value == 0.0 ? LargestDouble : 1000.0 / value;
}

void Write(kel::ostream& out, double value)
{
    WriteBigEndian(out, std::bit_cast<std::uint64_t>(value));
}

double Read(kel::istream& in)
{
    return std::bit_cast<double>(ReadBigEndian<std::uint64_t>(in));
}

void Append(kel::text_base<char>& out, double value)
{
    constexpr int Decimals = 6;
    constexpr std::size_t MostCharacters = 63;
    // The largest double has 316 characters. Not std::snprintf(), whose decimal point depends on
    // the locale.
    std::array<char, 320> buffer{};
    const char* const end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                          std::chars_format::fixed, Decimals)
                                .ptr;
    const auto length = static_cast<std::size_t>(end - buffer.data());
    out.append(buffer.data(), std::min(length, MostCharacters));
}

} // namespace

double toRate(TimecodeFormat format)
{
    return format < Rates.size() ? Rates[format] : 0.0;
}

double toRate(Interval interval)
{
    return DivideThousandBy(interval);
}

Interval toInterval(double rate)
{
    return DivideThousandBy(rate);
}

Interval toInterval(TimecodeFormat format)
{
    return toInterval(toRate(format));
}

TimecodeFormat toFormat(double rate)
{
    const double rounded = std::floor(rate + 0.5);
    // 29.97 rounds to 30 and is SMPTE 30 on purpose; NTSC 30 is never the answer.
    if (rounded == 30.0)
        return TimecodeFormat_Smpte30;
    if (rounded == 25.0)
        return TimecodeFormat_Ebu25;
    if (rounded == 24.0)
        return TimecodeFormat_Film24;
    return TimecodeFormat_Invalid;
}

TimecodeFormat toFormat(Interval interval)
{
    return toFormat(toRate(interval));
}

kel::ostream& operator<<(kel::ostream& out, const Index& index)
{
    Write(out, index);
    return out;
}

kel::istream& operator>>(kel::istream& in, Index& index)
{
    index = Read(in);
    return in;
}

kel::ostream& operator<<(kel::ostream& out, const Interval& interval)
{
    Write(out, interval);
    return out;
}

kel::istream& operator>>(kel::istream& in, Interval& interval)
{
    interval = Read(in);
    return in;
}

kel::text_base<char>& operator<<(kel::text_base<char>& out, const Index& index)
{
    Append(out, index);
    return out;
}

kel::text_base<char>& operator<<(kel::text_base<char>& out, const Interval& interval)
{
    Append(out, interval);
    return out;
}

} // namespace Hardware::Timecode
