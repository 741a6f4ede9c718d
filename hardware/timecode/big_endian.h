// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <concepts>
#include <cstddef>

#include "kel/streams.h"

namespace Hardware::Timecode
{

/// Writes a number most significant byte first, in one write.
template <std::unsigned_integral T> void WriteBigEndian(kel::ostream& out, T number)
{
    std::array<unsigned char, sizeof(T)> bytes{};
    for (std::size_t i = 0; i < sizeof(T); ++i)
        bytes[i] = static_cast<unsigned char>(number >> (8 * (sizeof(T) - 1 - i)));
    out.write(bytes.data(), sizeof(T));
}

/// Reads such a number; bytes that do not arrive count as 0.
template <std::unsigned_integral T> T ReadBigEndian(kel::istream& in)
{
    std::array<unsigned char, sizeof(T)> bytes{};
    in.read(bytes.data(), sizeof(T));
    T number = 0;
    for (const unsigned char byte : bytes)
        number = number << 8 | byte;
    return number;
}

} // namespace Hardware::Timecode
