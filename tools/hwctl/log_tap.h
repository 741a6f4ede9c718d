// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace Hwctl
{

/// Takes the trace lines of the serial port and of the flat-panel controller, whose operations tell
/// of failures, and of what they send, by nothing else. All other lines go on to where they went,
/// and these too where the user asked for them. One at a time.
class LogTap
{
public:
    enum class Need {
        Lines,      ///< the command cannot do without them
        WhatThereIs ///< lines that the log masks hold back are left out
    };
    /// Throws CommandError where the log masks hold back lines that are needed.
    explicit LogTap(Need need = Need::Lines);
    ~LogTap();
    LogTap(const LogTap&) = delete;
    LogTap& operator=(const LogTap&) = delete;

    /// Texts since the call before that begin with @p start, without it.
    std::vector<std::string> Take(const std::string& start);
    /// The same for lines that tell of a failure, whole.
    std::vector<std::string> TakeFailures() { return TakeWhole("Failed to "); }
    /// Lines of any context at the level of errors, which have gone on.
    bool SawErrors() const { return CountErrors() != 0; }
    unsigned CountErrors() const;
    /// The first of them; empty when there was none.
    std::string GetFirstError() const;

private:
    struct Private;

    std::vector<std::string> TakeWhole(const std::string& start);

    const std::shared_ptr<Private> m_private;
};

} // namespace Hwctl
