// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <istream>
#include <sstream>
#include <string>

namespace Tools
{

/// Calls @p take for each line that is not empty, with its number, the first being 1. What stands
/// behind # does not count.
void ForEachScriptLine(
    std::istream& text,
    const std::function<void(const std::string& line, std::size_t number)>& take);

/// The steps of a timed script, a line each. Throws std::invalid_argument for one that is earlier
/// than the one before.
/// @param kind  such as "widget script", for what is said
/// @param parse reads a line; throws std::invalid_argument where it cannot
template <class Steps, class ParseStep>
Steps ParseTimedScript(const std::string& kind, const std::string& text, ParseStep parse);

/// Throws std::invalid_argument: "KIND, line NUMBER: REASON".
[[noreturn]] void RefuseScriptLine(const std::string& kind, std::size_t line,
                                   const std::string& reason);

/// A whole file; throws std::runtime_error when it cannot be read.
std::string ReadWholeFile(const std::string& file);

template <class Steps, class ParseStep>
Steps ParseTimedScript(const std::string& kind, const std::string& text, ParseStep parse)
{
    Steps steps;
    std::istringstream lines(text);
    ForEachScriptLine(lines, [&](const std::string& line, std::size_t number) {
        steps.push_back(parse(line, number));
        if (steps.size() > 1 && steps.back().seconds < steps[steps.size() - 2].seconds)
            RefuseScriptLine(kind, number, "it is earlier than the line before");
    });
    return steps;
}

} // namespace Tools
