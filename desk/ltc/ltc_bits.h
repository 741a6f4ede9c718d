// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "desk/ltc_time.h"

namespace Desk
{

/// The 80 bits of a frame, the first one lowest in the first byte.
typedef std::array<std::uint8_t, 10> LtcBits;

constexpr std::size_t LtcBitCount = 80;
constexpr std::size_t LtcSyncBitCount = 16;
/// Transitions of the sync word: one a bit, and one more for each of its 13 ones.
constexpr std::size_t LtcSyncTransitionCount = LtcSyncBitCount + 13;

/// How many bits are one.
std::size_t CountOnes(const LtcBits& bits);

/// The time in a frame; nothing when it holds digits or numbers that no time has, at any rate.
std::optional<LtcTime> GetTime(const LtcBits& bits);

/// Writes a time in a frame, and leaves all other bits.
void SetTime(LtcBits& bits, const LtcTime& time);

/// How well the transitions of a frame stand where its bits want them.
struct LtcFit {
    double bitLength = 0; ///< samples
    double worst = 0;     ///< largest distance from its place, in samples
    double typical = 0;   ///< root mean square of all distances, in samples
};

/// Lays the places of all transitions through those found, at an evenly changing speed.
/// @param positions of the transitions, from the one that begins the frame to the one that ends it:
/// one more than it has bits and ones
LtcFit Fit(const LtcBits& bits, bool reverse, std::span<const double> positions);

} // namespace Desk
