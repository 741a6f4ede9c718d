// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

/// How far the numbers of verbs go.
namespace Console::Limits
{

constexpr int HighestByte = 255;
constexpr int HighestId = 65535;  ///< of parts and masters
constexpr int HighestSource = 99; ///< number of a simulated source
constexpr double HighestRate = 1000;
constexpr unsigned HighestFrameCount = 30; ///< frames a second of timecode as audio
constexpr double LongestDropout = 3600;    ///< seconds
constexpr int LongestTrack = 5999;         ///< seconds
constexpr int LongestDelay = 60000;        ///< milliseconds
constexpr int MostFlaps = 10000;
constexpr int AllLevels = 31; ///< of a log context
/// So much goes into a MIDI port at once; more could wait for whoever reads.
constexpr std::size_t MostBytes = 4000;
constexpr std::size_t MostSteps = 100; ///< of lights, in one line
constexpr double LongestWait = 1e6;    ///< seconds

} // namespace Console::Limits
