// SPDX-License-Identifier: MIT
#pragma once

#include <stdexcept>

namespace Hwctl
{

/// Ends a command with a message on standard error and ExitCode_Failure.
class CommandError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

} // namespace Hwctl
