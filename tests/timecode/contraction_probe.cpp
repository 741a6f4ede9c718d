// SPDX-License-Identifier: MIT

// Goes into a module with a copy of the library's timecode arithmetic that is compiled for a
// processor that multiplies and adds at once.

#include "hardware/timecode/frame.h"

extern "C" [[gnu::visibility("default")]] int GetFrameNumber(double index, double rate)
{
    return Hardware::Timecode::Frame(Hardware::Timecode::Index(index), rate).frames;
}
