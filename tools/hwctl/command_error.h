// SPDX-License-Identifier: MIT
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace Hwctl
{

/// Ends a command with a message on standard error and ExitCode_Failure.
class CommandError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The command line is wrong: ends the program with a message on standard error and
/// ExitCode_Usage. Nothing that stands in a file or in the environment, and nothing that a device
/// refuses, is a reason for it.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Reads what stands on the command line: returns what @p parse makes of @p argument. Throws
/// UsageError where it throws std::invalid_argument.
template <class Parse, class Argument> auto ParseArgument(Parse&& parse, Argument&& argument)
{
    try {
        return std::forward<Parse>(parse)(std::forward<Argument>(argument));
    } catch (const std::invalid_argument& error) {
        throw UsageError(error.what());
    }
}

} // namespace Hwctl
