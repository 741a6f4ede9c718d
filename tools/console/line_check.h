// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "console/desk_names.h"
#include "console/words.h"

namespace Console
{

/// Reads lines of a script without doing them: their verbs, the names of devices, values, files
/// that are read, and the paths of what is expected, waited for and shown. Needs the desk's data
/// alone, and nothing that runs.
///
/// What depends on what happens, such as a wing that was unplugged, shows only when a script is
/// done.
class LineCheck
{
public:
    explicit LineCheck(const Desk::DeskData& data) : m_names(data) {}

    /// Reads one line. Later lines can name what it makes. Throws std::invalid_argument and
    /// std::runtime_error with what is wrong.
    void Check(const std::string& line);
    /// Throws std::invalid_argument for a path that the desk's state cannot have.
    std::string FindPath(const std::string& path) const { return m_names.FindPath(path); }

private:
    DeskNames m_names;
};

} // namespace Console
