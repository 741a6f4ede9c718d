// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace Hwctl
{

/// Environment variable with masks of log contexts, as for --log, which goes before it.
inline constexpr char LogVariable[] = "HWCTL_LOG";

/// Sends the library's log lines to "stderr", "journal" or "none", and sets masks from HWCTL_LOG
/// and @p masks. Throws CommandError for a wrong list in HWCTL_LOG and UsageError for wrong masks.
void SetUpLog(const std::string& sink, const std::string& masks);

} // namespace Hwctl
