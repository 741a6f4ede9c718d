// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Tools
{

/// MIDI bytes with their times, as read from a text file.
///
/// A line is "MILLISECONDS MESSAGES BYTES...": when the bytes arrive, counted from the start and
/// never falling; how many messages a receiver completes with them, which are not more than there
/// are bytes; the bytes in hexadecimal. What stands behind '#' and empty lines do not count.
struct MidiRecording {
    struct Event {
        unsigned milliseconds;
        unsigned messages;
        std::vector<std::uint8_t> bytes;
    };
    std::vector<Event> events;

    /// Reads a text; throws std::runtime_error that names the text, the line and what is wrong.
    /// @param name of the text, for what is said
    static MidiRecording Parse(const std::string& text, const std::string& name);
    /// The same for a file.
    static MidiRecording Read(const std::string& path);
};

} // namespace Tools
