// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "support/log_capture.h"

namespace TestSupport
{

/// Checks that every line of the MIDI device so far has the level of its kind, and that there is no
/// line of another kind.
inline void ExpectMidiLogLevels(const LogCapture& log)
{
    const struct {
        unsigned level;
        const char* start;
    } kinds[] = {
        {8, "Error getting midi device count from sequencer: "},
        {8, "Error enumerating midi device index "},
        {8, "Error opening Midi input "},
        {8, "Error opening Midi output "},
        {8, "Error writing to Midi output "},
        {8, "Partial write to Midi output "},
        {8, "Error selecting on Midi input: "},
        {8, "Error reading Midi input: "},
        {1, "Error opening Midi sequencer: "},
        {1, "Midi input "},
        {1, "Midi output "},
        {1, "Found midi device "},
        {1, "Setting Midi input to "},
        {1, "Setting Midi output to "},
        {1, "Setting receive enable to "},
        {1, "Setting transmit enable to "},
        {1, "Starting midi receive thread"},
        {1, "Finished midi receive thread"},
        {1, "Received signal "},
        {1, "Received midi "},
        {1, "Start of sysEx message"},
        {1, "End of sysEx message"},
        {1, "Midi System message - expected size: "},
        {1, "Midi Note - expected size: "},
    };
    for (const auto& line : log.GetLines()) {
        unsigned level = 0;
        for (const auto& kind : kinds)
            if (level == 0 && line.text.starts_with(kind.start))
                level = kind.level;
        EXPECT_EQ(line.level, level) << line.text;
        EXPECT_EQ(line.context, "Hardware/Midi") << line.text;
        EXPECT_EQ(line.file, "midi/linux/midi_device.cpp") << line.text;
        EXPECT_GT(line.line, 0U) << line.text;
        EXPECT_NE(line.function.find('('), std::string::npos) << line.text;
    }
}

} // namespace TestSupport
