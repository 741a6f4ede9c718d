// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>

#include "hardware/timecode/device_sim.h"

namespace Tools
{

/// A simulated timecode source as somebody describes it in one word.
///
/// "RATE[,start=HH:MM:SS:FF][,backwards]", where RATE is a number of frames per second above 0, or
/// one of film24, ebu25, ntsc30, smpte30. Examples: "25", "ebu25,start=10:00:00:00",
/// "29.97,backwards".
struct TimecodeSource {
    double rate = 25.0; ///< frames per second, without direction
    bool named = false; ///< the rate was given as a format
    Hardware::TimecodeFormat format = Hardware::TimecodeFormat_Ebu25; ///< that format
    Hardware::Timecode::Frame start;                                  ///< first frame emitted
    bool backwards = false;                                           ///< direction

    /// Formats by the names that a description has for them.
    static const std::map<std::string, Hardware::TimecodeFormat>& GetFormats();
    /// Reads a description; throws std::invalid_argument that says what is wrong.
    static TimecodeSource Parse(const std::string& text);
    /// A frame such as "10:20:30:12", with ; for drop frame. Throws std::invalid_argument for any
    /// other text and for what is no time of a day.
    static Hardware::Timecode::Frame ParseFrame(const std::string& text);

    /// Position of the first frame that StartOn() makes the source emit.
    Hardware::Timecode::Index GetStartIndex() const;
    /// Creates and starts the source as instance @p number.
    void StartOn(Hardware::Timecode::DeviceSim& device, unsigned number) const;
};

} // namespace Tools
