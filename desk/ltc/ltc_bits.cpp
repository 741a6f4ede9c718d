// SPDX-License-Identifier: MIT
#include "ltc/ltc_bits.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace Desk
{

namespace
{

/// Where a number's digits stand: byte of the units, and bits of the tens in the byte after.
struct Place {
    std::size_t byte;
    std::uint8_t tensMask;
};

constexpr Place Frames{0, 0x03};
constexpr Place Seconds{2, 0x07};
constexpr Place Minutes{4, 0x07};
constexpr Place Hours{6, 0x03};
/// Most frames that any rate has in a second.
constexpr unsigned MostFrames = 30;
/// In the byte of the tens of frames.
constexpr std::uint8_t DropFrameBit = 0x04;

std::optional<std::uint8_t> GetNumber(const LtcBits& bits, const Place& place)
{
    const unsigned units = bits[place.byte] & 0x0FU;
    const unsigned tens = bits[place.byte + 1] & place.tensMask;
    if (units > 9)
        return std::nullopt;
    return static_cast<std::uint8_t>(tens * 10 + units);
}

void SetNumber(LtcBits& bits, const Place& place, unsigned number)
{
    std::uint8_t& units = bits[place.byte];
    std::uint8_t& tens = bits[place.byte + 1];
    units = static_cast<std::uint8_t>((units & 0xF0U) | number % 10);
    tens = static_cast<std::uint8_t>((tens & ~place.tensMask) | number / 10);
}

/// Places of a frame's transitions, in bits from its middle and as a share of half its length.
class Places
{
public:
    Places(const LtcBits& bits, bool reverse) : m_bits(bits), m_reverse(reverse) {}

    double GetNext()
    {
        const std::size_t halves = m_halves;
        const std::size_t bit = std::min(halves / 2, LtcBitCount - 1);
        const std::size_t at = m_reverse ? LtcBitCount - 1 - bit : bit;
        const bool one = (static_cast<unsigned>(m_bits[at / 8]) >> at % 8 & 1U) != 0;
        m_halves += one ? 1 : 2;
        return static_cast<double>(halves) / static_cast<double>(LtcBitCount) - 1.0;
    }

private:
    const LtcBits& m_bits;
    const bool m_reverse;
    std::size_t m_halves = 0;
};

/// Polynomial of the second degree through points, by least squares.
class Parabola
{
public:
    void Add(double x, double y)
    {
        double power = 1;
        for (std::size_t i = 0; i < m_powers.size(); ++i) {
            m_powers[i] += power;
            if (i < m_moments.size())
                m_moments[i] += power * y;
            power *= x;
        }
    }

    /// The three coefficients, lowest first, by Cramer's rule.
    std::array<double, 3> Solve() const
    {
        const auto& [s0, s1, s2, s3, s4] = m_powers;
        const auto& [t0, t1, t2] = m_moments;
        const double whole = Determinant({s0, s1, s2, s1, s2, s3, s2, s3, s4});
        return {Determinant({t0, s1, s2, t1, s2, s3, t2, s3, s4}) / whole,
                Determinant({s0, t0, s2, s1, t1, s3, s2, t2, s4}) / whole,
                Determinant({s0, s1, t0, s1, s2, t1, s2, s3, t2}) / whole};
    }

private:
    static double Determinant(const std::array<double, 9>& m)
    {
        return m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) +
               m[2] * (m[3] * m[7] - m[4] * m[6]);
    }

    std::array<double, 5> m_powers{};
    std::array<double, 3> m_moments{};
};

} // namespace

std::size_t CountOnes(const LtcBits& bits)
{
    std::size_t ones = 0;
    for (const std::uint8_t byte : bits)
        ones += static_cast<std::size_t>(std::popcount(byte));
    return ones;
}

std::optional<LtcTime> GetTime(const LtcBits& bits)
{
    const auto hours = GetNumber(bits, Hours);
    const auto minutes = GetNumber(bits, Minutes);
    const auto seconds = GetNumber(bits, Seconds);
    const auto frames = GetNumber(bits, Frames);
    if (!hours || !minutes || !seconds || !frames)
        return std::nullopt;
    const bool dropFrame = (bits[Frames.byte + 1] & DropFrameBit) != 0;
    const LtcTime time{*hours, *minutes, *seconds, *frames, dropFrame};
    return IsValid(time, MostFrames) ? std::optional(time) : std::nullopt;
}

void SetTime(LtcBits& bits, const LtcTime& time)
{
    SetNumber(bits, Hours, time.hours);
    SetNumber(bits, Minutes, time.minutes);
    SetNumber(bits, Seconds, time.seconds);
    SetNumber(bits, Frames, time.frames);
    std::uint8_t& flags = bits[Frames.byte + 1];
    flags =
        static_cast<std::uint8_t>((flags & ~DropFrameBit) | (time.dropFrame ? DropFrameBit : 0));
}

LtcFit Fit(const LtcBits& bits, bool reverse, std::span<const double> positions)
{
    // Counted from the first transition, so that squares of late positions lose nothing.
    const double origin = positions.front();
    Parabola parabola;
    Places places(bits, reverse);
    for (const double position : positions)
        parabola.Add(places.GetNext(), position - origin);
    const auto [a, b, c] = parabola.Solve();

    LtcFit fit{2 * b / static_cast<double>(LtcBitCount), 0, 0};
    Places again(bits, reverse);
    double squares = 0;
    for (const double position : positions) {
        const double x = again.GetNext();
        const double distance = position - origin - (a + (b + c * x) * x);
        fit.worst = std::max(fit.worst, std::abs(distance));
        squares += distance * distance;
    }
    fit.typical = std::sqrt(squares / static_cast<double>(positions.size()));
    return fit;
}

} // namespace Desk
