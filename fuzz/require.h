// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace Fuzz
{

/// Ends the run as a finding, with @p what, unless the condition holds.
inline void Require(bool condition, const char* what)
{
    if (condition)
        return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

/// Checks that a reason is "NAME:LINE: REST", with a line that the text has. Returns ": REST".
inline std::string CheckPlace(const std::string& reason, const std::string& name,
                              const std::string& text)
{
    const std::string begin = name + ":";
    Require(reason.starts_with(begin), "a reason without the text's name");
    char* end = nullptr;
    const long line = std::strtol(reason.c_str() + begin.size(), &end, 10);
    Require(line >= 1 && line <= 1 + std::count(text.begin(), text.end(), '\n'),
            "a line that the text does not have");
    std::string rest = end;
    Require(rest.starts_with(": "), "no reason");
    return rest;
}

} // namespace Fuzz
