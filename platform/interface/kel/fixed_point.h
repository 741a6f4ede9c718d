// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <limits>

/// Unsigned 16.16 fixed-point number: 0x00010000 is 1.0. Levels of lights are percentages in it,
/// from 0 to 100.0, which is 0x00640000.
// No class: some callers hand levels on as plain unsigned numbers.
typedef unsigned int uires16;

/// a / b of two fixed-point or two whole numbers, as a fixed-point number, cut off. Only the low 32
/// bits of a quotient are kept. All bits set for a division by 0.
constexpr uires16 UDivUIRes16(unsigned int a, unsigned int b)
{
    if (b == 0)
        return std::numeric_limits<uires16>::max();
    return static_cast<uires16>((std::uint64_t{a} << 16U) / b);
}

/// Product of two signed 16.16 numbers, rounded down, for negative products too. Only the low 32
/// bits are kept.
constexpr int SMulSIRes16(int a, int b)
{
    return static_cast<int>(std::int64_t{a} * b >> 16);
}
