// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace Hwctl
{

/// What is wrong with the command of a line that could not be parsed: it is missing, or there is no
/// such command. Names the word, the nearest commands, all that there are, and the help. Empty
/// where the command is not what is wrong.
std::string FindCommandProblem(const CLI::App& app);

/// The help of the command that these words name, the program's own for none. Throws UsageError for
/// words that name no command.
std::string GetHelp(CLI::App& app, const std::vector<std::string>& words);

} // namespace Hwctl
