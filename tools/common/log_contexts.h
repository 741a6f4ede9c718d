// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace Tools
{

/// A log context of the library or of the stand-alone platform, and what its lines are about.
struct LogContextHelp {
    std::string path; ///< such as "Hardware/Midi"
    std::string text;
};

/// Every context there can be, parents before children. A context itself is made when its first
/// line is due, so the living ones are not all.
const std::vector<LogContextHelp>& GetLogContexts();

/// The context of a name, whatever its case: one of these, or a program's own that has been made.
/// Throws std::invalid_argument with the nearest names
/// and all that there are for an unknown one.
std::string FindLogContext(const std::string& word);

} // namespace Tools
