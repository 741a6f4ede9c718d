// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>
#include <vector>

#include "standalone/log_sink.h"

namespace Standalone
{

/// Keeps every line, for tests and for a window that shows the log.
class PLATFORM_EXPORT MemorySink : public LogSink
{
public:
    typedef LogLine Line;

    void Write(const LogRecord& record) override;

    /// All lines so far, oldest first.
    std::vector<Line> GetLines() const;
    /// The texts of all lines so far, oldest first.
    std::vector<std::string> GetTexts() const;
    void Clear();

private:
    mutable std::mutex m_mutex;
    std::vector<Line> m_lines; // guarded by m_mutex
};

} // namespace Standalone
