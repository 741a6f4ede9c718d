// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace TestSupport
{

/// A run of hwctl that has ended.
struct HwctlRun {
    int exitCode;
    std::string out;
    std::string err;

    /// Lines of standard output.
    std::vector<std::string> GetLines() const;
};

/// Runs hwctl with these arguments, as from a shell with "C" locale.
/// @param environment further variables, each as NAME=value
/// @param interruptAfter sends SIGINT once standard output has this text
/// @param inputFile for standard input; empty for one without anything
/// @param outputFile standard output goes there; empty to have it in the result
HwctlRun RunHwctl(const std::vector<std::string>& arguments,
                  const std::vector<std::string>& environment = {},
                  const std::string& interruptAfter = {}, const std::string& inputFile = {},
                  const std::string& outputFile = {});

} // namespace TestSupport
