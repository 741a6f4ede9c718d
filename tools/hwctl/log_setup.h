// SPDX-License-Identifier: MIT
#pragma once

#include "hwctl/command.h"
#include "standalone/log_sink.h"

namespace Hwctl
{

/// Environment variable with masks of log contexts, as for --log, which goes before it.
inline constexpr char LogVariable[] = "HWCTL_LOG";

/// Sends the library's log lines to where the options say, and sets masks from HWCTL_LOG and from
/// the options. Throws CommandError for a wrong list in HWCTL_LOG, and UsageError for wrong masks
/// in the options; a context that there is not is wrong.
void SetUpLog(const CommonOptions& options);

/// Whether the log goes to standard error.
bool LogsToErrors(const CommonOptions& options);

/// Whether a line is for the user's terminal: a warning, an error, or of a context that masks were
/// given for. Only after SetUpLog(). Any thread.
bool IsForTerminal(const Standalone::LogRecord& record);

} // namespace Hwctl
