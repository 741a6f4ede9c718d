// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <deque>

#include "hardware/timecode/frame.h"

namespace Console
{

/// What is known of a timecode source by its frames. A value.
struct TimecodeReading {
    Hardware::Timecode::Frame frame; ///< the last one
    int direction = 0;               ///< 1 forwards, -1 backwards, 0 until two frames differ
    double rate = 0;                 ///< measured frames per second; 0 until there are enough
    double age = 0;                  ///< seconds since the last frame
    std::uint64_t frames = 0;        ///< all that came
    std::uint64_t lost = 0;          ///< frames that were skipped between two that came
    std::uint64_t repeated = 0;      ///< frames that came more than once in a row
};

/// Measures a timecode source. Pure: time is what it is told. One thread at a time.
///
/// Frames are lost where numbers are left out in the direction of travel, up to a second of them.
/// What is farther off, or against the direction, is a jump: it loses nothing, and one of more than
/// a second leaves the direction, as does one between frames with and without drop frame. With drop
/// frame, frames 0 and 1 of a minute that ten does not divide are not missed. The day begins anew
/// behind its last frame.
///
/// How many frames a second counts is told by the highest number seen, and until a whole second was
/// seen by the measured rate too. Where one second follows another that may be too many, so there
/// no more are lost than had time to come: rates that are no whole number leave out some numbers,
/// and a format may change.
class TimecodeMeter
{
public:
    /// @param seconds when the frame came, on any clock that does not go back
    void Take(const Hardware::Timecode::Frame& frame, double seconds);
    TimecodeReading Read(double seconds) const;

private:
    void Compare(const Hardware::Timecode::Frame& frame, double seconds);
    double GetRate() const;
    std::int64_t CountFramesOfSecond(const Hardware::Timecode::Frame& frame) const;

    TimecodeReading m_reading;
    std::deque<double> m_times; // of the last frames, oldest first
    int m_highestFrame = 0;     // number seen so far
    int m_newSeconds = 0;       // how often one second followed another; two make a whole one
};

} // namespace Console
