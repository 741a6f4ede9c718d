// SPDX-License-Identifier: MIT

// Reads arbitrary texts as recordings of MIDI, checks what is said of those that are none, and that
// what was read reads the same once it is written down.

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "common/hex.h"
#include "common/midi_recording.h"
#include "require.h"

using Fuzz::Require;
using Tools::MidiRecording;

namespace
{

constexpr char Name[] = "fuzz";

std::string Write(const MidiRecording& recording)
{
    std::string text;
    for (const MidiRecording::Event& event : recording.events)
        text += std::to_string(event.milliseconds) + " " + std::to_string(event.messages) + " " +
                Tools::FormatHex(event.bytes) + "\n";
    return text;
}

void CheckRecording(const MidiRecording& recording)
{
    unsigned last = 0;
    for (const MidiRecording::Event& event : recording.events) {
        Require(event.milliseconds >= last, "a time that falls");
        Require(!event.bytes.empty(), "an event without bytes");
        Require(event.messages <= event.bytes.size(), "more messages than bytes");
        last = event.milliseconds;
    }
    const std::string text = Write(recording);
    Require(Write(MidiRecording::Parse(text, Name)) == text, "what was written reads otherwise");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    const std::string text(data, data + size);
    try {
        CheckRecording(MidiRecording::Parse(text, Name));
    } catch (const std::runtime_error& error) {
        Fuzz::CheckPlace(error.what(), Name, text);
    }
    return 0;
}
