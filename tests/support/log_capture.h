// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "standalone/memory_sink.h"

namespace TestSupport
{

/// Takes all log lines for as long as it lives; widens one subtree first where asked.
class LogCapture
{
public:
    LogCapture();
    /// Also sets the mask of the context at @p path, and puts it back at the end.
    LogCapture(const std::string& path, unsigned mask);
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<Standalone::MemorySink::Line> GetLines() const { return m_sink->GetLines(); }
    std::vector<std::string> GetTexts() const { return m_sink->GetTexts(); }
    /// Number of lines with exactly this text.
    std::size_t Count(const std::string& text) const;
    void Clear() { m_sink->Clear(); }

private:
    const std::shared_ptr<Standalone::MemorySink> m_sink;
    const std::shared_ptr<Standalone::LogSink> m_previous;
    const std::string m_path;
    unsigned m_previousMask = 0;
};

} // namespace TestSupport
