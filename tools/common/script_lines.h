// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <istream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>

namespace Tools
{

/// Calls @p take for each line that is not empty, with its number, the first being 1. What stands
/// behind # does not count.
void ForEachScriptLine(
    std::istream& text,
    const std::function<void(const std::string& line, std::size_t number)>& take);

/// The steps of a timed script, a line each. Throws std::invalid_argument with "NAME:LINE: REASON"
/// for a line that @p parse refuses, and for one that is earlier than the one before.
/// @param name  of the script, such as its file's
/// @param parse reads a line; throws std::invalid_argument with the reason where it cannot
template <class Steps, class ParseStep>
Steps ParseTimedScript(const std::string& name, const std::string& text, ParseStep parse);

/// Takes the seconds that a line of a timed script begins with. Throws std::invalid_argument with
/// the reason.
double TakeScriptSeconds(std::istream& line);

/// A whole file; throws std::runtime_error with "FILE: REASON" when it cannot be read or is longer
/// than 64 MiB.
std::string ReadWholeFile(const std::string& file);

template <class Steps, class ParseStep>
Steps ParseTimedScript(const std::string& name, const std::string& text, ParseStep parse)
{
    Steps steps;
    std::istringstream lines(text);
    ForEachScriptLine(lines, [&](const std::string& line, std::size_t number) {
        const std::string place = name + ":" + std::to_string(number);
        try {
            auto step = parse(line);
            if (!steps.empty() && step.seconds < steps.back().seconds)
                throw std::invalid_argument("it is earlier than the line before");
            step.place = place;
            steps.push_back(std::move(step));
        } catch (const std::invalid_argument& error) {
            throw std::invalid_argument(place + ": " + error.what());
        }
    });
    return steps;
}

} // namespace Tools
