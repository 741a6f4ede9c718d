// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "hardware/export.h"

/// A place or a length on an audio CD: a number of the disc's frames, 75 to the second, which may
/// be negative. A value. Sums that leave 32 bits wrap.
class HARDWARE_EXPORT CdTime
{
public:
    /// Each field counts with its sign and is taken as it is, in range or not.
    void Set(char hours, char minutes, char seconds, char frames);

    // What a clock would show: parts of the magnitude, so that -76 frames read as 1 second and 1
    // frame. IsNegative() has the sign.

    int GetHour() const;
    int GetMinute() const;
    int GetSecond() const;
    int GetFrame() const;
    bool IsNegative() const;

    void Add(CdTime time);
    void Subtract(CdTime time);

    int GetRawFrameCount() const;
    void SetRawFrameCount(int count);

private:
    std::int32_t m_count = 0;
};
