// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>

#include "os/log.h"
#include "standalone/widget_report.h"

namespace Standalone
{

/// Logs reports that cannot be read: the first one of a device and code, then how many there were,
/// so that a broken device does not flood the log. Used by one thread.
class UnreadableReports
{
public:
    explicit UnreadableReports(Os::Log::Context& log) : m_log(log) {}

    void Add(const std::wstring& path, const Report::Bytes& report);
    /// Logs the counts of a device that is gone, and forgets it.
    void Detached(const std::wstring& path);

private:
    struct Count {
        unsigned long all = 0;
        unsigned long next = 0; ///< at which the count is logged again
        unsigned long logged = 0;
    };
    typedef std::map<int, Count> Counts; // by code, -1 for reports without one

    void LogCount(const std::wstring& path, int code, Count& count);

    Os::Log::Context& m_log;
    std::map<std::wstring, Counts> m_devices; // by path
};

} // namespace Standalone
