// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "hardware/export.h"
#include "hardware/timecode/rate.h"
#include "os/clock.h"

namespace Hardware::Timecode
{

/// Turns a frame period that may have a fraction into sleeps of whole milliseconds. At 30 frames
/// per second the sleeps run 33, 34, 33. Used by one thread at a time.
class HARDWARE_EXPORT IntervalCalc
{
public:
    explicit IntervalCalc(Interval interval);

    /// Sets the frame period and forgets all that was handed out.
    void SetInterval(Interval interval);
    Interval GetInterval() const { return m_interval; }

    /// The next sleep in milliseconds, read as a signed number.
    ///
    /// It is the period and the fraction that has come together, less the lateness of this call
    /// (negative when it came early) against the result before. A lateness above one period is
    /// ignored: nothing tries to catch up after a stall. A result beyond the range of 32 bits is
    /// the nearest bound.
    std::uint32_t GetMillisecs();

private:
    Interval m_interval;
    double m_accumulated = 0.0;     // all periods handed out since the interval was set
    Os::TimeMs m_lastTime = 0;      // clock at the call before, 0 for none yet
    std::uint32_t m_lastResult = 0; // result of the call before
};

} // namespace Hardware::Timecode
