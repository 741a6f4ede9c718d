// SPDX-License-Identifier: MIT
#include "common/midi_recording.h"

#include <limits>
#include <sstream>
#include <stdexcept>

#include "common/hex.h"
#include "common/script_lines.h"

namespace Tools
{

namespace
{

/// Reads one line into @p event; what is wrong with it, or nothing.
std::string ParseLine(const std::string& line, MidiRecording::Event& event)
{
    std::istringstream in(line);
    constexpr long Longest = std::numeric_limits<unsigned>::max();
    long milliseconds = -1;
    long messages = -1;
    if (!(in >> milliseconds) || milliseconds < 0 || milliseconds > Longest)
        return "no time in milliseconds";
    if (!(in >> messages) || messages < 0)
        return "no count of messages";
    std::string rest;
    std::getline(in, rest);
    const auto bytes = ParseHex(rest);
    if (!bytes || bytes->empty())
        return "no bytes in hexadecimal";
    if (static_cast<std::size_t>(messages) > bytes->size())
        return "more messages than bytes";
    event = {static_cast<unsigned>(milliseconds), static_cast<unsigned>(messages), *bytes};
    return {};
}

} // namespace

MidiRecording MidiRecording::Parse(const std::string& text, const std::string& name)
{
    MidiRecording recording;
    std::istringstream lines(text);
    ForEachScriptLine(lines, [&](const std::string& line, std::size_t number) {
        Event event{};
        std::string problem = ParseLine(line, event);
        if (problem.empty() && !recording.events.empty() &&
            event.milliseconds < recording.events.back().milliseconds)
            problem = "the time falls";
        if (!problem.empty())
            throw std::runtime_error(std::string(name)
                                         .append(":")
                                         .append(std::to_string(number))
                                         .append(": ")
                                         .append(problem));
        recording.events.push_back(std::move(event));
    });
    return recording;
}

MidiRecording MidiRecording::Read(const std::string& path)
{
    return Parse(ReadWholeFile(path), path);
}

} // namespace Tools
